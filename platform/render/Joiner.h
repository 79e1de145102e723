#pragma once

#include "platform/render/WriterResult.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Velmor::Render {

// One part of a video that was encoded in parts: its file, and where its first picture shows in
// the whole, in microseconds from the whole's first picture.
struct JoinedPart {
    std::string path;
    std::int64_t startUs = 0;
};

// Joins the parts of a video, encoded apart with the same headers, and the sound encoded once,
// into one container file by copying their packets: nothing is decoded or encoded. Each part's
// timestamps move to where the part starts; the sound's stay as they are. The packets of the two
// streams are interleaved by time, and MP4 gets its index at the front.
//
// The file is an open descriptor, the caller's, as for Writer. One thread.
class Joiner {
public:
    // `name` names the output in failures; `container` is the muxer's short name ("mp4").
    Joiner(int descriptor, const std::string& name, const std::string& container);
    Joiner(const Joiner&) = delete;
    Joiner& operator=(const Joiner&) = delete;
    ~Joiner();

    // Writes the parts' video, in order, and the best audio stream of `audio` (none when empty);
    // what was written, the video first. Throws AV::MediaError for a file that can not be read
    // or written, and "Can not join <name>: <part> has no video".
    WriterResult join(const std::vector<JoinedPart>& parts, const std::string& audio);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Render
