#pragma once

namespace Timeline {

// Keeps the timeline of the open project.
class Controller {
public:
    Controller();
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;
    ~Controller();
};

} // namespace Timeline
