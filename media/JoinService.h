#pragma once

#include "media/JoinRequest.h"
#include "service/requests/DefaultServiceImpl.h"

namespace EditorService {

// Joins the parts of a split export (checkSegments) into one MP4 by copying their packets
// (Render::Joiner), each part's pictures moved to where it starts, the index at the front, on a
// thread of its own. The output is checked first as export's is (ExistingOutput, the skipped
// value {"join": {"output", "skipped": true}}) and written through a Velmor::OutputFile:
// nothing stands at the output unless the join succeeded. Its one value is export's done value
// for the joined file, "input" the input the parts were made from; the check's and the
// libraries' failures end the stream unchanged.
class JoinService : public DefaultServiceImpl<JoinRequest> {
public:
    // "join".
    static QString serviceId();

    using DefaultServiceImpl<JoinRequest>::run;
    rxcpp::observable<nlohmann::json> run(const rxcpp::observable<JoinRequest>& requests) override;
};

} // namespace EditorService
