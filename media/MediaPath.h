#pragma once

#include "service/requests/DefaultRequestSerializer.h"
#include "service/requests/OptionDumper.h"

#include <QCommandLineOption>
#include <QList>
#include <QStringList>

namespace EditorService {

// The command line with its first positional argument written as the path option, so that
// "probe clip.mp4" and "probe --path=clip.mp4" read as one request. Nothing changes when there
// is no positional argument or the option is set already.
QStringList withPathOption(const QStringList& arguments, const QList<QCommandLineOption>& options,
                           const QCommandLineOption& pathOption);

// The option of a request's media file: "--path", described as what the file is to be ("The
// media file", "The video file").
QCommandLineOption mediaPathOption(const QString& what);
// Throws Error "No media file specified, try --help for all available options" for an empty
// path.
void requireMediaPath(const QString& path);

// The generic serializer of a request R whose media file stands first on its command line.
// R declares its path as the field of R::pathOption().
template <class R> class MediaPathSerializer : public DefaultRequestSerializer<R> {
public:
    std::unique_ptr<Request> loadFromCli(const QStringList& arguments) override {
        R fields;
        CLI::OptionDumper dumper;
        dumper << fields;
        return DefaultRequestSerializer<R>::loadFromCli(
            withPathOption(arguments, dumper.options, R::pathOption()));
    }
};

} // namespace EditorService
