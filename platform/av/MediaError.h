#pragma once

#include <stdexcept>
#include <string>

namespace Velmor::AV {

// A failure of the media libraries, with what was being done and the library's own reason:
// "Can not open media file: a.mp4: No such file or directory".
class MediaError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The library's text for one of its error codes, as av_strerror gives it.
std::string errorText(int code);

// Returns a non-negative result as it is; throws MediaError "<what>: <reason>" for a negative
// one.
int check(int result, const std::string& what);

} // namespace Velmor::AV
