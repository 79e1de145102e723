#pragma once

namespace Composition {

// Builds the composition that the engine renders.
class Controller {
public:
    Controller();
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;
    ~Controller();
};

} // namespace Composition
