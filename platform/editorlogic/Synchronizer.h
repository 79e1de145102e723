#pragma once

namespace Connection {

// Keeps the editor's objects in step with the engine's.
class Synchronizer {
public:
    Synchronizer();
    Synchronizer(const Synchronizer&) = delete;
    Synchronizer& operator=(const Synchronizer&) = delete;
    ~Synchronizer();
};

} // namespace Connection
