#pragma once

namespace FastTrack {

// Stands for the fast-track controller where no fast track is offered.
class ControllerStub {
public:
    ControllerStub();
    ControllerStub(const ControllerStub&) = delete;
    ControllerStub& operator=(const ControllerStub&) = delete;
    ~ControllerStub();
};

} // namespace FastTrack
