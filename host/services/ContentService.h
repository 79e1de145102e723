#pragma once

#include "host/services/ContentRequest.h"
#include "service/requests/DefaultServiceImpl.h"

// Lists what the content providers offer a project, one value per item in display order, then
// completes:
//     {"transition": {"name": "fade", "description": "..."}}
//     {"easing": {"name": "ease-in", "description": "..."}}
//     {"overlay": {"name": "text", "description": "...", "positions": ["top-left", ...]}}
//     {"theme": {"name": "Classic", "description": "...", "transition": {...}, "title": {...}}}
// Only the text overlay has "positions"; a theme's "transition" and "title" are as a project
// writes them, each present when the theme gives one. The providers are asked on the
// subscribing thread; a theme package that can not be read is the stream's error.
class ContentService : public EditorService::DefaultServiceImpl<ContentRequest> {
public:
    // "content".
    static QString serviceId();

    using DefaultServiceImpl<ContentRequest>::run;
    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<ContentRequest>& requests) override;
};
