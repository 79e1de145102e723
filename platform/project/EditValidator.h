#pragma once

#include "platform/project/Edit.h"
#include "platform/project/MediaProber.h"

namespace Project {

// Checks an edit against its media before anything renders, and settles what reading left
// open: which clips are still pictures, every clip's length and start, which video clips have
// sound, the overlays' lengths (cut at the end of the project), the length of one play of each
// audio clip, the output's size and rate, the project's length. Each media file is probed once.
// Throws ProjectError, the place of the bad value in each message:
//     "<project>: <clip>.source: <what probing threw>", naming the file as the project does
//     "<project>: <clip>.source: No video stream in <source>" (No audio stream for audio clips)
//     "<project>: <clip>.in_ms: <source> is a still picture; give duration_ms"
//     "<project>: <clip>.duration_ms: <source> is a video; cut it with in_ms and out_ms"
//     "<project>: <clip>.in_ms: <t> ms is past the end of <source> (<d> ms)" (out_ms alike)
//     "<project>: <clip>.out_ms: <t> ms is not after in_ms (<t> ms)"
//     "<project>: <clip>.transition: the first clip has no clip before it"
//     "<project>: <clip>.transition: <d> ms is longer than the clip before it (<l> ms)"
//     "<project>: <clip>.transition: <d> ms is longer than its own clip (<l> ms)"
//     "<project>: <clip>.transition: <d> ms and the transition into the clip before it
//      (<d> ms) are longer than that clip (<l> ms)"
//     "<project>: <clip>.start_ms: <t> ms is past the end of the project (<l> ms)"
//     "<project>: <clip>.duration_ms: <d> ms from in_ms (<t> ms) is past the end of <source>
//      (<d> ms)"
Edit validateEdit(Edit edit, const IMediaProber& prober);

} // namespace Project
