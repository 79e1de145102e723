#pragma once

#include "service/contexts/GlobalContextProvider.h"
#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/DefaultRequestSerializer.h"
#include "service/requests/DefaultServiceImpl.h"
#include "service/requests/OptionField.h"

#include <QCommandLineOption>
#include <QStringList>

// Which contexts of the editor's runtime to start: "--require", a comma-separated list of
// engine, media, content and render, or all. Items are trimmed; empty items are skipped.
struct RuntimeRequest : EditorService::DefaultRequestImpl<RuntimeRequest> {
    using Serializer = EditorService::DefaultRequestSerializer<RuntimeRequest>;

    static QCommandLineOption requireOption();

    QString description() const override;
    // Throws Error for a name that is no context.
    void validateOnLoad() const override;

    // The contexts named, as the provider's flags. Throws Error
    // "Unknown context \"<name>\", expects engine, media, content, render or all".
    EditorService::GlobalContextProvider::GlobalContexts requiredContexts() const;

    template <class Archive> void serialize(Archive& archive, const unsigned int) {
        EditorService::visitField(archive, require, requireOption());
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }

    QString require = QStringLiteral("all");
};

// Starts the contexts a request names, with what they depend on, through the process's
// GlobalContextProvider, on the subscribing thread, and emits one value per request:
//     {"runtime": {"contexts": ["engine", "media"], "milliseconds": 12, "required": ["engine"]}}
// "contexts" lists every context that is up when the value is made, whoever started it (a hot
// start, an earlier request); "required" lists those the request needed: the ones named and
// their dependencies. Both are in construction order. "milliseconds" is how long the provider
// took, contexts that were up already costing nothing. A context that fails to start, or a
// process with no provider, ends the stream with the error.
class RuntimeService : public EditorService::DefaultServiceImpl<RuntimeRequest> {
public:
    static QString serviceId();

    using DefaultServiceImpl<RuntimeRequest>::run;
    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<RuntimeRequest>& requests) override;
};
