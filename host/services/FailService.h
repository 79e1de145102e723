#pragma once

#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/DefaultRequestSerializer.h"
#include "service/requests/DefaultServiceImpl.h"
#include "service/requests/OptionField.h"

#include <QCommandLineOption>

// What to fail with, and when.
struct FailRequest : EditorService::DefaultRequestImpl<FailRequest> {
    using Serializer = EditorService::DefaultRequestSerializer<FailRequest>;

    static QCommandLineOption messageOption();
    static QCommandLineOption afterOption();

    QString description() const override;
    // Throws Error for a negative delay.
    void validateOnLoad() const override;

    template <class Archive> void serialize(Archive& archive, const unsigned int) {
        EditorService::visitField(archive, message, messageOption());
        EditorService::visitField(archive, after, afterOption());
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }

    QString message = QStringLiteral("failed");
    int after = 0;
};

// Fails with Error carrying the message: at once for a delay of 0, otherwise after the delay,
// from a thread of its own. Emits no value.
class FailService : public EditorService::DefaultServiceImpl<FailRequest> {
public:
    static QString serviceId();

    using DefaultServiceImpl<FailRequest>::run;
    rxcpp::observable<nlohmann::json> run(const rxcpp::observable<FailRequest>& requests) override;
};
