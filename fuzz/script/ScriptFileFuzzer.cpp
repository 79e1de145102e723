#include "fuzz/script/FuzzApplication.h"
#include "service/CLIUtils.h"

#include <QDir>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <unistd.h>

namespace {

struct Outcome {
    long lists = 0;
    bool completed = false;
    bool failed = false;
};

bool ended(void* context) {
    const auto* outcome = static_cast<const Outcome*>(context);
    return outcome->completed || outcome->failed;
}

const QString& scriptPath() {
    static const QString path =
        QDir::temp().filePath(QStringLiteral("fuzz-script-file-%1.reel").arg(::getpid()));
    return path;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    EditorService::Fuzzing::startApplication();
    return 0;
}

// A whole file's bytes as a script: the stream completes without error, and yields no more
// lists than the file has lines, each list headed by the application path.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    {
        std::ofstream file(scriptPath().toStdString(), std::ios::binary | std::ios::trunc);
        file.write(reinterpret_cast<const char*>(data), std::streamsize(size));
    }
    const long lines = 1 + long(std::count(data, data + size, std::uint8_t('\n')));

    Outcome outcome;
    CLIUtils::openCommandScript(scriptPath())
        .subscribe(
            [&outcome](const QStringList& list) {
                ++outcome.lists;
                if (list.size() < 2 || list.first() != EditorService::Fuzzing::applicationPath())
                    std::abort();
            },
            [&outcome](std::exception_ptr) { outcome.failed = true; },
            [&outcome] { outcome.completed = true; });
    EditorService::Fuzzing::spinUntil(ended, &outcome);
    if (outcome.failed || outcome.lists > lines)
        std::abort();
    return 0;
}
