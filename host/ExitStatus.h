#pragma once

// The host's exit statuses, chosen as the usual tools choose them.
namespace ExitStatus {
constexpr int Success = 0;
constexpr int Failure = 1;        // the service's stream failed
constexpr int Usage = 2;          // no service, an unknown service or host option
constexpr int TimedOut = 124;     // as timeout(1)
constexpr int Interrupted = 130;  // 128 + SIGINT
constexpr int OutputClosed = 141; // 128 + SIGPIPE: the reader of stdout has gone
constexpr int Terminated = 143;   // 128 + SIGTERM
} // namespace ExitStatus
