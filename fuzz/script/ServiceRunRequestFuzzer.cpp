#include "service/api/Error.h"
#include "service/api/ServiceRunRequest.h"

#include <QCommandLineOption>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <cstdlib>
#include <cstring>

using EditorService::ServiceRunRequest;

namespace {

// Pieces of the input between NUL bytes and line feeds, the first one the program path.
QStringList commandLineOf(const std::uint8_t* data, std::size_t size) {
    QStringList commandLine;
    const char* begin = reinterpret_cast<const char*>(data);
    const char* end = begin + size;
    const char* piece = begin;
    for (const char* at = begin; at != end; ++at) {
        if (*at != '\0' && *at != '\n')
            continue;
        commandLine.append(QString::fromUtf8(piece, int(at - piece)));
        piece = at + 1;
    }
    if (piece != end)
        commandLine.append(QString::fromUtf8(piece, int(end - piece)));
    return commandLine;
}

// Options as the host gives them: one with a value and a short alias, one flag.
const QList<QCommandLineOption>& hostLikeOptions() {
    static const QList<QCommandLineOption> options{
        QCommandLineOption(QStringList{QStringLiteral("timeout"), QStringLiteral("t")},
                           QStringLiteral("limit"), QStringLiteral("seconds"),
                           QStringLiteral("-1")),
        QCommandLineOption(QStringLiteral("hot-start"), QStringLiteral("flag"))};
    return options;
}

void check(const QStringList& commandLine, const QList<QCommandLineOption>& options) {
    try {
        const ServiceRunRequest request = ServiceRunRequest::fromCli(commandLine, options);
        if (commandLine.isEmpty() || request.arguments.isEmpty()
            || request.arguments.first() != commandLine.first())
            std::abort();
        // The name and the arguments behind it are the tail of the command line, unchanged.
        const QStringList tail = QStringList(request.serviceName) + request.arguments.mid(1);
        if (commandLine.mid(commandLine.size() - tail.size()) != tail)
            std::abort();
    } catch (const EditorService::Error& error) {
        if (std::strcmp(error.what(), "No service specified") != 0)
            std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QStringList commandLine = commandLineOf(data, size);
    check(commandLine, {});
    check(commandLine, hostLikeOptions());
    return 0;
}
