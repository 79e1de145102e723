#pragma once

namespace Velmor::AV {

// Sends the media libraries' own log to the process's log, warnings and worse only. Installed
// once; calling it again does nothing.
void installLogBridge();

} // namespace Velmor::AV
