#pragma once

#include "media/ProbeRequest.h"
#include "service/requests/DefaultServiceImpl.h"

#include <optional>

namespace EditorService {

// Describes a media file, parsed by the media layer's file controller on its thread, as one
// value and then completes:
//     {"probe": {"path", "format", "duration_ms", "bit_rate", "size", "streams": [...]}}
// "format" is the demuxer's name, "bit_rate" null when unknown; each stream has "index",
// "type" and "codec", video streams "width", "height", "frame_rate" ("num/den") and
// "pixel_format", audio streams "sample_rate" and "channels". The file controller parses one
// file at a time: while a probe waits for its turn it emits {"probe": {"path", "queued": true,
// "ahead"}} every 400 ms, "ahead" the probes waiting before it, so that a time limit on silence
// sees it alive. The media context is started on the subscribing thread; the value comes on the
// file controller's thread. A file that can't be read ends the stream with
// Velmor::AV::MediaError, a disabled "DecodersFF" plug-in with Velmor::Core::PluginError, and
// the runtime's end while the probe waits with Media::ProbeCancelled "Probe cancelled: <path>"
// on the thread that ends it. A probe whose subscriber has left by its turn is not parsed.
class ProbeService : public DefaultServiceImpl<ProbeRequest> {
public:
    // Times the values of a waiting probe on the main thread (RxApp::mainThread()).
    ProbeService();
    // Times them on `waiting`, whose actions must run later, never inside the call that
    // schedules them.
    explicit ProbeService(rxcpp::observe_on_one_worker waiting);

    // "probe".
    static QString serviceId();

    using DefaultServiceImpl<ProbeRequest>::run;
    rxcpp::observable<nlohmann::json> run(const rxcpp::observable<ProbeRequest>& requests) override;

private:
    std::optional<rxcpp::observe_on_one_worker> waiting;
};

} // namespace EditorService
