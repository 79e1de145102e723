#include "host/services/RuntimeService.h"

#include "service/api/Error.h"

#include <chrono>
#include <vector>

using EditorService::Error;
using EditorService::GlobalContextProvider;

namespace {

using Contexts = GlobalContextProvider::GlobalContexts;

struct KnownContext {
    QString name;
    GlobalContextProvider::GlobalContext key;
    // The context with everything it depends on.
    Contexts upWith;
};

// In construction order, so that the last one brings up everything.
const std::vector<KnownContext>& knownContexts() {
    using P = GlobalContextProvider;
    static const std::vector<KnownContext> known{
        {QStringLiteral("engine"), P::Engine, P::Engine},
        {QStringLiteral("media"), P::Media, P::Engine | P::Media},
        {QStringLiteral("content"), P::Content, P::Engine | P::Media | P::Content},
        {QStringLiteral("render"), P::Render, P::Engine | P::Media | P::Content | P::Render}};
    return known;
}

Contexts upWith(const QString& name) {
    if (name == QLatin1String("all"))
        return knownContexts().back().upWith;
    for (const auto& known : knownContexts()) {
        if (known.name == name)
            return known.upWith;
    }
    throw Error(QStringLiteral("Unknown context \"%1\", expects engine, media, content, render "
                               "or all")
                    .arg(name)
                    .toStdString());
}

// In construction order.
nlohmann::json namesOf(Contexts contexts) {
    nlohmann::json names = nlohmann::json::array();
    for (const auto& known : knownContexts()) {
        if (contexts.testFlag(known.key))
            names.push_back(known.name.toStdString());
    }
    return names;
}

} // namespace

QCommandLineOption RuntimeRequest::requireOption() {
    return QCommandLineOption(
        QStringLiteral("require"),
        QStringLiteral("Contexts to start: a comma-separated list of engine, media, content, "
                       "render, or all."),
        QStringLiteral("contexts"), QStringLiteral("all"));
}

QString RuntimeRequest::description() const {
    return QStringLiteral("Start the editor's runtime contexts named by --require, with what "
                          "they depend on, and tell which are up and how long it took.");
}

void RuntimeRequest::validateOnLoad() const {
    requiredContexts();
}

Contexts RuntimeRequest::requiredContexts() const {
    Contexts contexts;
    const QStringList names = require.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString& name : names) {
        const QString trimmed = name.trimmed();
        if (trimmed.isEmpty())
            continue;
        contexts |= upWith(trimmed);
    }
    return contexts;
}

QString RuntimeService::serviceId() {
    return QStringLiteral("runtime");
}

rxcpp::observable<nlohmann::json>
RuntimeService::run(const rxcpp::observable<RuntimeRequest>& requests) {
    return requests
        .map([](const RuntimeRequest& request) {
            const Contexts contexts = request.requiredContexts();
            GlobalContextProvider* provider = GlobalContextProvider::instance();
            if (!provider)
                throw Error("No runtime: the process has no GlobalContextProvider");
            const auto start = std::chrono::steady_clock::now();
            provider->require(contexts);
            const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
                std::chrono::steady_clock::now() - start);

            return nlohmann::json{{"runtime",
                                   {{"contexts", namesOf(provider->builtContexts())},
                                    {"milliseconds", elapsed.count()},
                                    {"required", namesOf(contexts)}}}};
        })
        .as_dynamic();
}
