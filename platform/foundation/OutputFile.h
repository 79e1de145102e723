#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace Velmor {

// A file that appears at its path complete or not at all, written where nobody else's link can
// redirect it: every writer of an output goes through one.
//
// The constructor removes this host's stale temporaries of the output (StaleTemporaries), then
// creates a new temporary beside it, named as TemporaryName says, with O_CREAT | O_EXCL |
// O_NOFOLLOW: a file of this process that nothing stood at before, with the mode the umask
// leaves of 0666. It is written through descriptor(), never opened by name. commit() flushes it
// to disk, renames it into place (a link standing at the path is replaced, never followed) and
// flushes the folder. The temporary is listed with Temporaries while it exists, and the
// destructor removes it unless it was committed.
//
// One thread at a time.
class OutputFile {
public:
    // What commit() does with a file that stands at the path by then.
    enum class Existing {
        Keep,    // fails, even when the file appeared a moment before
        Replace, // replaces it
    };
    // `count` letters or digits, unpredictable; the system's randomness when none is given.
    using Letters = std::function<std::string(std::size_t count)>;

    // Throws WriteError "Can not write <path>: <reason>" for a folder that is missing or can not
    // be written, and "...: File exists" when every name tried was taken.
    OutputFile(std::string path, Existing existing, Letters letters = {});
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    const std::string& path() const;
    const std::string& temporaryPath() const;
    // Open for reading and writing, since a muxer may read back what it wrote; -1 once
    // committed. The descriptor stays this object's: writers never close it.
    int descriptor() const;
    // The bytes written so far; once committed, the output's.
    std::int64_t size() const;

    // Puts the output in place. Throws OutputExists "Output file exists: <path>" when a file
    // that is to be kept stands there, and WriteError "Can not write <path>: <reason>"; the
    // temporary then goes with this object. A failure to flush the folder comes after the
    // rename, so that the output stands then.
    void commit();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor
