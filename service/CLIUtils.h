#pragma once

#include "service/api/EditorServiceExport.h"

#include <QString>
#include <QStringList>
#include <rxcpp/rx.hpp>

// Command input: turns a text source into a stream of argument lists, one per command, each
// with the application path first, as a Qt command-line parser expects it.
//
// Script format: one command per line; each line goes through QString::simplified; empty
// lines and lines starting with "#" are skipped; the rest is split at ";" into the command's
// arguments (empty parts dropped; a part of only a blank stays, as an empty argument). No
// quoting, no escapes, no comments behind text.
namespace CLIUtils {

// Reads the script at `path` on the subscribing thread, inside subscribe, and delivers its
// commands on the application's main thread in file order. Each subscription reads the file
// anew. A file that can't be opened fails the stream with std::runtime_error
// "Can not open input device: <path>".
EDITORSERVICE_EXPORT rxcpp::observable<QStringList> openCommandScript(const QString& path);

// Stands for the standard input, which is no command source: the stream only fails, with
// std::runtime_error "Input from stdin is not supported on this platform yet".
EDITORSERVICE_EXPORT rxcpp::observable<QStringList> openCommandPipe();

// Internal building blocks, visible for tests and fuzzing.
// The raw lines of a file, without their line ends.
rxcpp::observable<QString> openFile(const QString& path);
// Zero or one argument list for one raw line; logs each command line it keeps.
rxcpp::observable<QStringList> parseCommand(const QString& line);

} // namespace CLIUtils
