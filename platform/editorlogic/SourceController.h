#pragma once

namespace Media {

// Knows the media sources that the editor has opened.
class SourceController {
public:
    SourceController();
    SourceController(const SourceController&) = delete;
    SourceController& operator=(const SourceController&) = delete;
    ~SourceController();
};

} // namespace Media
