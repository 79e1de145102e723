#include "fuzz/script/FuzzApplication.h"
#include "service/api/HelpException.h"
#include "service/services/ScriptRequest.h"

#include <QString>
#include <QStringList>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>

using EditorService::Request;
using EditorService::ScriptRequest;

namespace {

// The program path first, then each piece of the input between NUL bytes and line feeds.
QStringList argumentsOf(const std::uint8_t* data, std::size_t size) {
    QStringList arguments(QStringLiteral("app-path-stub"));
    const char* begin = reinterpret_cast<const char*>(data);
    const char* end = begin + size;
    const char* piece = begin;
    for (const char* at = begin; at != end; ++at) {
        if (*at != '\0' && *at != '\n')
            continue;
        arguments.append(QString::fromUtf8(piece, int(at - piece)));
        piece = at + 1;
    }
    if (piece != end)
        arguments.append(QString::fromUtf8(piece, int(end - piece)));
    return arguments;
}

bool same(const Request& left, const Request& right) {
    const auto& a = dynamic_cast<const ScriptRequest&>(left);
    const auto& b = dynamic_cast<const ScriptRequest&>(right);
    return a.path == b.path && a.jobs == b.jobs;
}

// Only the failures a script request documents may leave a load.
template <class Load> std::unique_ptr<Request> loadOrNothing(Load load) {
    try {
        return load();
    } catch (const EditorService::CLI::HelpException&) {
    } catch (const std::invalid_argument&) {
    } catch (const nlohmann::json::exception&) {
    }
    return nullptr;
}

} // namespace

// The help text names the running application, so a load needs one, as in the host.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    EditorService::Fuzzing::startApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ScriptRequest::Serializer serializer;

    const QStringList arguments = argumentsOf(data, size);
    if (const auto request = loadOrNothing([&] { return serializer.loadFromCli(arguments); })) {
        // A path that starts with "-" is written as it stands and so reads back as an option.
        const QString& path = dynamic_cast<const ScriptRequest&>(*request).path;
        if (!path.startsWith(QLatin1Char('-')) || path == QLatin1String("-")) {
            const auto again = serializer.loadFromCli(serializer.toCli(*request));
            if (!same(*request, *again))
                std::abort();
        }
        const auto fromJson = serializer.loadFromJson(serializer.toJson(*request));
        if (!same(*request, *fromJson))
            std::abort();
    }

    const nlohmann::json value = nlohmann::json::parse(data, data + size, nullptr, false);
    if (value.is_discarded())
        return 0;
    if (const auto request = loadOrNothing([&] { return serializer.loadFromJson(value); })) {
        const auto again = serializer.loadFromJson(serializer.toJson(*request));
        if (!same(*request, *again))
            std::abort();
    }
    return 0;
}
