#pragma once

#include "media/ThumbnailRequest.h"
#include "service/requests/DefaultServiceImpl.h"

#include <optional>

namespace EditorService {

// Takes one thumbnail per request through the render context's thumbnail controller, which
// runs it as a task of the media layer (busy while it works), one thumbnail at a time, and
// emits one value, then completes:
//     {"thumbnail": {"path", "output", "at_ms", "frame_ms", "width", "height"}}
// "frame_ms" is the display time of the frame taken. While it waits for its turn it emits
// {"thumbnail": {"output", "queued": true, "ahead"}} every 400 ms, "ahead" the thumbnails
// waiting before it, so that a time limit on silence sees it alive. The output is checked first,
// as an export's is (ExistingOutput): an existing one ends the stream with Error "Output file
// exists: <path>" unless --overwrite, or with --skip-existing gives the one value {"thumbnail":
// {"output", "skipped": true}}; a missing or unwritable folder ends it with Error "Can not
// write to <folder>: <reason>", before anything is read. The picture appears at the output
// whole or not at all (Velmor::OutputFile), and an output that appears while the thumbnail
// is taken is kept, with the same Error "Output file exists: <path>", unless --overwrite.
// The render context, with what it needs, is started on the subscribing thread; the value
// comes on the task controller's thread.
// Failures end the stream with their exception: Velmor::AV::MediaError for a file that can't
// be read, has no video stream, or ends before the time; Velmor::WriteError and
// Velmor::AV::MediaError "Can not write <output>: <reason>" for an output that can't be written;
// Velmor::Core::PluginError for a disabled "DecodersFF" or "EncodersFF" plug-in;
// Thumbnail::ThumbnailCancelled "Thumbnail cancelled: <output>" when the runtime ends while
// the thumbnail waits, on the thread that ends it. A thumbnail whose subscriber has left (or
// whose time limit expired) by its turn is neither read nor written.
class ThumbnailService : public DefaultServiceImpl<ThumbnailRequest> {
public:
    // Times the values of a waiting thumbnail on the main thread (RxApp::mainThread()).
    ThumbnailService();
    // Times them on `waiting`, whose actions must run later, never inside the call that
    // schedules them.
    explicit ThumbnailService(rxcpp::observe_on_one_worker waiting);

    // "thumbnail".
    static QString serviceId();

    using DefaultServiceImpl<ThumbnailRequest>::run;
    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<ThumbnailRequest>& requests) override;

private:
    std::optional<rxcpp::observe_on_one_worker> waiting;
};

} // namespace EditorService
