#pragma once

#include "service/api/AbstractRequestSerializer.h"
#include "service/requests/DefaultRequestImpl.h"

#include <QCommandLineOption>
#include <QString>
#include <QStringList>

namespace EditorService {

struct ScriptRequest;
extern template struct EDITORSERVICE_EXPORT DefaultRequestImpl<ScriptRequest>;

// What the script service is to do: which script to run and how many of its commands may run
// at once. 1 and above is the limit; anything below 1 means no limit.
struct EDITORSERVICE_EXPORT ScriptRequest : DefaultRequestImpl<ScriptRequest> {
    class Serializer;

    ScriptRequest(const QString& path, int jobs);
    ScriptRequest(const ScriptRequest& other);
    ScriptRequest(ScriptRequest&& other) noexcept;
    ScriptRequest& operator=(const ScriptRequest& other);
    ScriptRequest& operator=(ScriptRequest&& other) noexcept;
    ~ScriptRequest() override;

    // "--jobs"/"-j" with the value name "N" and the default "1"; built once, shared by all.
    static const QCommandLineOption& jobsOption();
    // The jobs option of a command line (program name first) as the script service reads it:
    // the last value given; 1 when absent or given last without a value; 0 for a text that is
    // no number. Never fails.
    static int jobsFrom(const QStringList& arguments);

    QString path;
    int jobs;
};

// Reads and writes a ScriptRequest by hand: on a command line as
// "<program> <path> [--jobs=N]", in JSON as {"path": ..., "jobs": ...}. Unknown options and
// further positional arguments are ignored; a missing JSON key raises a nlohmann::json
// exception, never a default.
class EDITORSERVICE_EXPORT ScriptRequest::Serializer : public AbstractRequestSerializer {
public:
    std::unique_ptr<Request> loadFromCli(const QStringList& arguments) override;
    std::unique_ptr<Request> loadFromJson(const nlohmann::json& value) override;
    QStringList toCli(const Request& request) const override;
    nlohmann::json toJson(const Request& request) const override;
};

} // namespace EditorService
