#pragma once

#include <string>
#include <vector>

namespace Velmor {

// Temporaries that processes of this host left behind when they ended without cleaning up
// (SIGKILL, a power cut), told by their names: this host's, and a pid that no longer runs.
// Temporaries of other hosts are never touched, since a pid means nothing elsewhere; nor are
// other users' files, links, or anything but regular files.
//
// A process lists a folder once, the first time it writes there, so that a batch writing
// thousands of files into one folder does not read it thousands of times; each write then
// removes what was found for its own output. Thread-safe.
class StaleTemporaries {
public:
    // Removes the stale temporaries of the output named `output` (a file name, no folder) in
    // the folder open as `folder`, each with a warning in the log, and returns their paths.
    // `prefix` is the folder as the output's path names it: empty or ending in '/'.
    static std::vector<std::string> removeFor(int folder, const std::string& prefix,
                                              const std::string& output);
};

} // namespace Velmor
