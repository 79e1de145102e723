#pragma once

#include <QCommandLineOption>
#include <QString>
#include <exception>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>
#include <string>

// What a command that writes a file does when the file exists: it fails with "Output file
// exists", replaces the file (--overwrite) or does nothing (--skip-existing). One rule for every
// service that writes files, checked before any work.
namespace EditorService::ExistingOutput {

QCommandLineOption overwriteOption();
QCommandLineOption skipExistingOption();
// Throws Error "--overwrite and --skip-existing can not be given together".
void requireOneChoice(bool overwrite, bool skipExisting);

// Whether the command is to be skipped: a file, or a link, stands at the output and
// --skip-existing is given. Throws Error "Output file exists: <output>" when one stands there
// and neither option is given, and Error "Can not write to <folder>: <reason>" for a folder
// that is missing, no folder, or can not be written.
bool isSkipped(const QString& output, bool overwrite, bool skipExisting);

// {"<service>": {"output", "skipped": true}}.
nlohmann::json skipped(const std::string& service, const std::string& output);

// The stream of a command that writes `output`: checked when subscribed, on the subscribing
// thread, before `work` is subscribed; a skipped command emits skipped() and completes, a check
// that fails ends the stream with its Error.
rxcpp::observable<nlohmann::json> checkedFirst(const std::string& service, const QString& output,
                                               bool overwrite, bool skipExisting,
                                               rxcpp::observable<nlohmann::json> work);

// A writer's failure as the check words it: Velmor::OutputExists, an output that appeared while
// the command worked, becomes the check's Error "Output file exists: <output>"; any other
// failure stays as it is.
std::exception_ptr asCheckFailure(std::exception_ptr failure);

} // namespace EditorService::ExistingOutput
