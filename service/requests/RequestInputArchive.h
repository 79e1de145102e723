#pragma once

#include "service/api/EditorServiceExport.h"
#include "service/api/Request.h"
#include "service/requests/OptionDumper.h"
#include "service/requests/OptionField.h"
#include "service/requests/ValueText.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QList>
#include <QStringList>
#include <boost/archive/detail/common_iarchive.hpp>
#include <boost/serialization/serialization.hpp>
#include <optional>
#include <type_traits>
#include <vector>

namespace EditorService::CLI {

// Reads a request from a command line without a program path: `archive >> request`.
//
// The request's description becomes the parser's, its options (by an OptionDumper) and then the
// help option are added, and "app-path-stub" plus `arguments` is parsed, never processed: unknown
// options, stray positional arguments and missing values are no errors. With the help option set
// it throws CLI::HelpException (the help text, then "\n" and additionalHelp() when that is not
// empty) before any field is read. Otherwise the field visitor runs; it ends with
// validateOnLoad().
//
// Field values: std::optional<T> is empty unless its option is set; bool is whether its option
// is set; any other T is parseValue<T> of the value text, which is the next of `pendingValues`
// if any, else the option's value: the last one given, or its default text when none was given
// (the option absent, or given last with nothing behind it). A text that does not parse throws
// std::runtime_error "Can not parse \"<text>\" as <type>".
class EDITORSERVICE_EXPORT RequestInputArchive
    : public boost::archive::detail::common_iarchive<RequestInputArchive> {
public:
    explicit RequestInputArchive(QStringList arguments);
    ~RequestInputArchive() override;

    QStringList arguments;
    QCommandLineParser parser;
    std::vector<QCommandLineOption> optionStack;
    QStringList pendingValues;

private:
    friend class boost::archive::detail::interface_iarchive<RequestInputArchive>;
    friend class boost::archive::detail::common_iarchive<RequestInputArchive>;

    template <class R, std::enable_if_t<std::is_base_of_v<Request, R>, int> = 0>
    void load_override(R& request) {
        describe(request);
        OptionDumper dumper;
        dumper << request;
        parseArguments(request, dumper.options);
        using boost::serialization::serialize;
        serialize(*this, request, 0u);
    }

    // A value without a name inside a request, such as a group of fields: its visitor runs.
    template <class T, std::enable_if_t<!std::is_base_of_v<Request, T>, int> = 0>
    void load_override(T& value) {
        using boost::serialization::serialize;
        serialize(*this, value, 0u);
    }

    template <class T> void load_override(const OptionField<T>& field) {
        optionStack.push_back(field.option);
        loadValue(*field.value);
        optionStack.pop_back();
    }

    template <class T> void loadValue(T& value) { value = parseValue<T>(takeValueText()); }

    template <class T> void loadValue(std::optional<T>& value) {
        if (!isCurrentOptionSet()) {
            value.reset();
            return;
        }
        T loaded{};
        loadValue(loaded);
        value = std::move(loaded);
    }

    void loadValue(bool& value);

    void describe(const Request& request);
    void parseArguments(const Request& request, const QList<QCommandLineOption>& options);
    bool isCurrentOptionSet() const;
    QString takeValueText();

    // Boost's bookkeeping never comes from a command line.
    void load_override(boost::archive::version_type&) {}
    void load_override(boost::archive::object_id_type&) {}
    void load_override(boost::archive::class_id_type&) {}
    void load_override(boost::archive::class_id_optional_type&) {}
    void load_override(boost::archive::tracking_type&) {}
    void load_override(boost::archive::class_name_type&) {}

    void vload(boost::archive::version_type& version) override;
    void vload(boost::archive::object_id_type& id) override;
    void vload(boost::archive::class_id_type& id) override;
    void vload(boost::archive::class_id_optional_type& id) override;
    void vload(boost::archive::tracking_type& tracking) override;
    void vload(boost::archive::class_name_type& name) override;
};

} // namespace EditorService::CLI
