#pragma once

#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/DefaultRequestSerializer.h"
#include "service/requests/DefaultServiceImpl.h"
#include "service/requests/OptionField.h"

#include <QCommandLineOption>

// How many ticks, and how far apart.
struct TickRequest : EditorService::DefaultRequestImpl<TickRequest> {
    using Serializer = EditorService::DefaultRequestSerializer<TickRequest>;

    static QCommandLineOption countOption();
    static QCommandLineOption intervalOption();

    QString description() const override;
    // Throws Error for a negative count or interval.
    void validateOnLoad() const override;

    template <class Archive> void serialize(Archive& archive, const unsigned int) {
        EditorService::visitField(archive, count, countOption());
        EditorService::visitField(archive, interval, intervalOption());
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }

    int count = 3;
    int interval = 100;
};

// Emits {"tick": i} for i from 1 to count, one every interval milliseconds, on a thread of its
// own, then completes; a count of 0 completes at once.
class TickService : public EditorService::DefaultServiceImpl<TickRequest> {
public:
    static QString serviceId();

    using DefaultServiceImpl<TickRequest>::run;
    rxcpp::observable<nlohmann::json> run(const rxcpp::observable<TickRequest>& requests) override;
};
