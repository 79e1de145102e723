#pragma once

#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace EditorService::Testing {

// A new file open for reading and writing, as a writer takes its output, closed when this goes.
class NewFile {
public:
    explicit NewFile(const std::string& path)
        : descriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644)) {}
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        if (descriptor >= 0)
            ::close(descriptor);
    }

    const int descriptor;
};

} // namespace EditorService::Testing
