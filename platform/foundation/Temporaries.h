#pragma once

#include <string>
#include <vector>

namespace Velmor::Temporaries {

// The process's files that exist only while work is under way, so that whatever ends the
// process early (a time limit, a signal) can remove them before it goes. Every function may be
// called from any thread.

// Adds a path; adding it again changes nothing.
void add(const std::string& path);
// Forgets a path, leaving the file alone.
void remove(const std::string& path);
// The paths added and not yet forgotten, in the order they were added.
std::vector<std::string> paths();
// Deletes every file added and forgets them all. It takes no allocation and only a lock the
// other functions hold briefly, so that a thread about to end the process may call it.
void removeAll();

} // namespace Velmor::Temporaries
