#pragma once

#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/DefaultRequestSerializer.h"
#include "service/requests/OptionField.h"
#include "service/requests/RequestInputArchive.h"
#include "service/services/ScriptRequest.h"

#include <QCommandLineOption>
#include <QString>
#include <type_traits>

// Which part of a script to run: the commands whose position among the script's commands
// (first command 0) is index modulo count, up to jobs of them at once, as the script service
// would run them. Without --index and --count the one part is the whole script.
struct ShardRequest : EditorService::DefaultRequestImpl<ShardRequest> {
    class Serializer;

    static QCommandLineOption pathOption();
    static QCommandLineOption indexOption();
    static QCommandLineOption countOption();

    QString description() const override;
    QString additionalHelp() const override;
    // Throws Error "No script path specified" for an empty path, "--count must be at least 1"
    // for a count below 1 and "--index must be between 0 and <count - 1>" for an index outside.
    void validateOnLoad() const override;

    template <class Archive> void serialize(Archive& archive, const unsigned int) {
        EditorService::visitField(archive, path, pathOption());
        EditorService::visitField(archive, index, indexOption());
        EditorService::visitField(archive, count, countOption());
        // On a command line the serializer reads jobs the script request's way, which never
        // fails; the archive still declares the option, so "--jobs 3 <path>" parses.
        if constexpr (!std::is_same_v<Archive, EditorService::CLI::RequestInputArchive>)
            EditorService::visitField(archive, jobs, EditorService::ScriptRequest::jobsOption());
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }

    QString path;
    int index = 0;
    int count = 1;
    int jobs = 1;
};

// The field convention's forms, with the script's path also taken as the first positional
// argument, as the script service takes it: "shard <path> --index=K --count=N [--jobs=J]";
// a positional path wins over --path, and --jobs reads as the script's does (a text that is
// no number is 0, no limit). Written back as "app-path-stub --path=... --index=K
// --count=N --jobs=J". The JSON form is {"path", "index", "count", "jobs"}.
class ShardRequest::Serializer : public EditorService::DefaultRequestSerializer<ShardRequest> {
public:
    std::unique_ptr<EditorService::Request> loadFromCli(const QStringList& arguments) override;
    QStringList toCli(const EditorService::Request& request) const override;
};
