#pragma once

#include "service/api/Error.h"
#include "service/api/Request.h"
#include "service/requests/DefaultRequestSerializer.h"
#include "service/requests/OptionField.h"

#include <QCommandLineOption>
#include <atomic>
#include <optional>

namespace EditorService::Testing {

// A request declared through the field convention, as a wrapped service's request would be: one
// optional number "level", which must not be negative, and a process-wide count of its
// validations.
struct ProbeRequest : Request {
    using Serializer = DefaultRequestSerializer<ProbeRequest>;

    static QCommandLineOption levelOption() {
        return QCommandLineOption(QStringList{QStringLiteral("level"), QStringLiteral("l")},
                                  QStringLiteral("Probe level"), QStringLiteral("n"));
    }

    static std::atomic<int>& validations() {
        static std::atomic<int> count{0};
        return count;
    }

    std::unique_ptr<AbstractRequestSerializer> serializer() const override {
        return std::make_unique<Serializer>();
    }

    void validateOnLoad() const override {
        ++validations();
        if (level && *level < 0)
            throw Error("Probe level must not be negative");
    }

    template <class Archive> void serialize(Archive& archive, const unsigned int /*version*/) {
        EditorService::visitField(archive, level, levelOption());
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }

    std::optional<int> level;
};

} // namespace EditorService::Testing
