#include "fuzz/script/FuzzApplication.h"
#include "service/CLIUtils.h"

#include <QString>
#include <QStringList>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <vector>

namespace {

std::vector<QStringList> parse(const QString& line) {
    std::vector<QStringList> lists;
    bool ended = false;
    CLIUtils::parseCommand(line).subscribe(
        [&lists](const QStringList& list) { lists.push_back(list); },
        [](std::exception_ptr) { std::abort(); }, [&ended] { ended = true; });
    // The chain is synchronous: it has ended inside subscribe.
    if (!ended)
        std::abort();
    return lists;
}

QStringList withoutEmptyParts(QStringList parts) {
    parts.removeAll(QString());
    return parts;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    EditorService::Fuzzing::startApplication();
    return 0;
}

// Any bytes as one raw line: zero or one list, the application path first; the list's parts
// joined by ";" read back as the same parts, less the empty ones (a part of only a blank can't
// survive the join), unless the joined text has turned into a comment.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString line = QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));
    const std::vector<QStringList> lists = parse(line);
    if (lists.size() > 1)
        std::abort();
    if (lists.empty())
        return 0;
    const QStringList& list = lists.front();
    if (list.size() < 2 || list.first() != EditorService::Fuzzing::applicationPath())
        std::abort();

    const QStringList parts = list.mid(1);
    const QString joined = parts.join(QLatin1Char(';'));
    if (joined.startsWith(QLatin1Char('#')))
        return 0;
    const QStringList expected = withoutEmptyParts(parts);
    const std::vector<QStringList> again = parse(joined);
    if (expected.isEmpty()) {
        if (!again.empty())
            std::abort();
        return 0;
    }
    if (again.size() != 1 || again.front().mid(1) != expected)
        std::abort();
    return 0;
}
