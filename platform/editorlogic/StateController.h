#pragma once

namespace State {

// Keeps the editor's undoable state.
class Controller {
public:
    Controller();
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;
    ~Controller();
};

} // namespace State
