#include "platform/foundation/OutputFile.h"

#include "platform/foundation/OutputExists.h"
#include "platform/foundation/StaleTemporaries.h"
#include "platform/foundation/Temporaries.h"
#include "platform/foundation/TemporaryName.h"
#include "platform/foundation/WriteError.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <stdexcept>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Velmor {
namespace {

// Names tried before giving up: with links planted at all of them, somebody guesses the letters.
constexpr int attempts = 100;

std::string systemLetters(std::size_t count) {
    static const std::string alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    std::string bytes(count, '\0');
    std::size_t filled = 0;
    while (filled < count) {
        const ssize_t got = ::getrandom(&bytes[filled], count - filled, 0);
        if (got > 0)
            filled += static_cast<std::size_t>(got);
        else if (errno != EINTR)
            break;
    }
    std::random_device fallback;
    for (std::size_t index = filled; index < count; ++index)
        bytes[index] = static_cast<char>(fallback());
    for (char& c : bytes)
        c = alphabet[static_cast<unsigned char>(c) % alphabet.size()];
    return bytes;
}

bool isNoFileName(const std::string& name) {
    return name.empty() || name == "." || name == "..";
}

} // namespace

class OutputFile::Private {
public:
    Private(std::string path, Existing existing, Letters letters)
        : path(std::move(path))
        , existing(existing)
        , letters(letters ? std::move(letters) : Letters(systemLetters)) {}

    ~Private() {
        if (descriptor >= 0)
            ::close(descriptor);
        if (created && !committed) {
            ::unlinkat(folder, temporaryName.c_str(), 0);
            Temporaries::remove(temporaryPath);
        }
        if (folder >= 0)
            ::close(folder);
    }

    const std::string path;
    const Existing existing;
    const Letters letters;
    // The folder as the path names it, empty or ending in '/', and the file's own name.
    std::string prefix;
    std::string name;
    int folder = -1;
    // False for a folder that may be written but not read, which can't be flushed.
    bool folderFlushes = true;
    std::string temporaryName;
    std::string temporaryPath;
    int descriptor = -1;
    bool created = false;
    bool committed = false;
    std::int64_t committedSize = 0;

    [[noreturn]] void fail(int error) const { throw WriteError(path, error); }

    void openFolder();
    void create();
    void flushAndClose();
    void place();
    void placeByLink();
    void placeAfterLooking();
    void flushFolder();
};

void OutputFile::Private::openFolder() {
    const std::size_t slash = path.rfind('/');
    prefix = slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
    name = path.substr(prefix.size());
    if (isNoFileName(name))
        fail(EISDIR);
    const std::string folderPath = prefix.empty() ? std::string(".") : prefix;
    folder = ::open(folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0 && errno == EACCES) {
        folderFlushes = false;
        folder = ::open(folderPath.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    }
    if (folder < 0)
        fail(errno);
}

void OutputFile::Private::create() {
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const TemporaryName temporary{name, TemporaryName::thisHost(), ::getpid(),
                                      letters(TemporaryName::letterCount)};
        temporaryName = temporary.text();
        temporaryPath = prefix + temporaryName;
        // Listed first, so that whatever ends the process early finds it from its first moment.
        Temporaries::add(temporaryPath);
        descriptor = ::openat(folder, temporaryName.c_str(),
                              O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
        if (descriptor >= 0) {
            created = true;
            return;
        }
        const int error = errno;
        Temporaries::remove(temporaryPath);
        if (error != EEXIST)
            fail(error);
    }
    fail(EEXIST);
}

void OutputFile::Private::flushAndClose() {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || ::fsync(descriptor) != 0)
        fail(errno);
    committedSize = status.st_size;
    const int closed = ::close(descriptor);
    descriptor = -1;
    if (closed != 0 && errno != EINTR)
        fail(errno);
}

void OutputFile::Private::place() {
    if (existing == Existing::Replace) {
        if (::renameat(folder, temporaryName.c_str(), folder, name.c_str()) != 0)
            fail(errno);
        return;
    }
    if (::renameat2(folder, temporaryName.c_str(), folder, name.c_str(), RENAME_NOREPLACE) == 0)
        return;
    if (errno == EEXIST)
        throw OutputExists(path);
    if (errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP)
        fail(errno);
    placeByLink();
}

// For a filesystem that can't rename without replacing: a new link never replaces either.
void OutputFile::Private::placeByLink() {
    if (::linkat(folder, temporaryName.c_str(), folder, name.c_str(), 0) == 0) {
        ::unlinkat(folder, temporaryName.c_str(), 0);
        return;
    }
    if (errno == EEXIST)
        throw OutputExists(path);
    if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS)
        fail(errno);
    placeAfterLooking();
}

// For one without links too: the only way left, with a moment between looking and renaming.
void OutputFile::Private::placeAfterLooking() {
    struct stat status {};
    if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0)
        throw OutputExists(path);
    if (errno != ENOENT)
        fail(errno);
    if (::renameat(folder, temporaryName.c_str(), folder, name.c_str()) != 0)
        fail(errno);
}

void OutputFile::Private::flushFolder() {
    if (folderFlushes && ::fsync(folder) != 0 && errno != EINVAL)
        fail(errno);
}

OutputFile::OutputFile(std::string path, Existing existing, Letters letters)
    : d(std::make_unique<Private>(std::move(path), existing, std::move(letters))) {
    d->openFolder();
    StaleTemporaries::removeFor(d->folder, d->prefix, d->name);
    d->create();
}

OutputFile::~OutputFile() = default;

const std::string& OutputFile::path() const {
    return d->path;
}

const std::string& OutputFile::temporaryPath() const {
    return d->temporaryPath;
}

int OutputFile::descriptor() const {
    return d->descriptor;
}

std::int64_t OutputFile::size() const {
    struct stat status {};
    if (d->descriptor < 0 || ::fstat(d->descriptor, &status) != 0)
        return d->committedSize;
    return status.st_size;
}

void OutputFile::commit() {
    if (d->descriptor < 0)
        throw std::logic_error("Can not write " + d->path + ": it was committed already");
    d->flushAndClose();
    d->place();
    d->committed = true;
    Temporaries::remove(d->temporaryPath);
    d->flushFolder();
}

} // namespace Velmor
