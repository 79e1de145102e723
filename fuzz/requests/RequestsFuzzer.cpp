// Loads arbitrary argument lists and JSON documents through a request's serializer. Only the
// failures the serializer documents may come out; whatever loads must read back equal from
// both written forms. Anything else aborts.

#include "service/api/HelpException.h"
#include "tests/service/requests/SampleRequest.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QStringList>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <typeinfo>

namespace {

using EditorService::Testing::SampleRequest;

[[noreturn]] void fail(const char* what, const std::string& detail) {
    std::fprintf(stderr, "%s: %s\n", what, detail.c_str());
    std::abort();
}

bool isDocumentedRuntimeError(const std::runtime_error& error) {
    static const QRegularExpression parseFailure(
        QStringLiteral("\\ACan not parse \".*\" as (int|long long)\\z"),
        QRegularExpression::DotMatchesEverythingOption);
    const QString what = QString::fromStdString(error.what());
    return parseFailure.match(what).hasMatch()
           || what
                  == QStringLiteral("Optional field is required to be at least null, due to "
                                    "Config::ExplicitOptionalNulls");
}

template <class Load> void expectOnlyDocumentedFailures(Load&& load) {
    try {
        load();
    } catch (const EditorService::CLI::HelpException&) {
    } catch (const nlohmann::json::exception&) {
    } catch (const std::out_of_range& error) {
        if (typeid(error) != typeid(std::out_of_range)
            || std::string(error.what()) != "invalid map<K, T> key")
            fail("undocumented out_of_range", error.what());
    } catch (const std::runtime_error& error) {
        if (typeid(error) != typeid(std::runtime_error) || !isDocumentedRuntimeError(error))
            fail("undocumented runtime_error", error.what());
    } catch (const std::exception& error) {
        fail(typeid(error).name(), error.what());
    } catch (...) {
        fail("non-standard exception", "");
    }
}

void expectRoundTrips(SampleRequest::Serializer& serializer, const EditorService::Request& loaded) {
    const auto& original = dynamic_cast<const SampleRequest&>(loaded);

    const QStringList arguments = serializer.toCli(original);
    const auto fromCli = serializer.loadFromCli(arguments);
    if (!(dynamic_cast<const SampleRequest&>(*fromCli) == original))
        fail("command line round trip differs", arguments.join(QLatin1Char(' ')).toStdString());

    const nlohmann::json document = serializer.toJson(original);
    const auto fromJson = serializer.loadFromJson(nlohmann::json::parse(document.dump()));
    if (!(dynamic_cast<const SampleRequest&>(*fromJson) == original))
        fail("JSON round trip differs", document.dump());
}

void loadArguments(const std::uint8_t* data, std::size_t size) {
    QStringList arguments;
    std::size_t start = 0;
    for (std::size_t at = 0; at <= size; ++at) {
        if (at < size && data[at] != '\0' && data[at] != '\n')
            continue;
        arguments.append(QString::fromUtf8(reinterpret_cast<const char*>(data + start),
                                           static_cast<int>(at - start)));
        start = at + 1;
    }
    SampleRequest::Serializer serializer;
    expectOnlyDocumentedFailures([&] {
        const auto request = serializer.loadFromCli(arguments);
        expectRoundTrips(serializer, *request);
    });
}

void loadDocument(const std::uint8_t* data, std::size_t size, int config) {
    const nlohmann::json document = nlohmann::json::parse(data, data + size, nullptr, false);
    if (document.is_discarded())
        return;
    SampleRequest::Serializer serializer;
    serializer.config = config;
    expectOnlyDocumentedFailures([&] {
        const auto request = serializer.loadFromJson(document);
        expectRoundTrips(serializer, *request);
    });
}

} // namespace

// The help text names the program, which needs an application object for the whole run.
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    static int argc = 1;
    static char name[] = "fuzz_requests";
    static char* argv[] = {name, nullptr};
    static QCoreApplication* application = new QCoreApplication(argc, argv);
    (void)application;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    loadArguments(data, size);
    loadDocument(data, size, 0);
    loadDocument(data, size, Serialize::Json::Config::ExplicitOptionalNulls);
    return 0;
}
