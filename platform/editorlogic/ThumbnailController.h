#pragma once

#include <memory>

namespace Thumbnail {

class Extractor;

// Schedules thumbnail extraction; shares the ownership of its extractor.
class Controller {
public:
    explicit Controller(std::shared_ptr<Extractor> extractor);
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;
    ~Controller();

    const std::shared_ptr<Extractor>& extractor() const;

private:
    std::shared_ptr<Extractor> m_extractor;
};

} // namespace Thumbnail
