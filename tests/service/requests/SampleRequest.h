#pragma once

#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/DefaultRequestSerializer.h"
#include "service/requests/OptionField.h"

#include <QCommandLineOption>
#include <QString>
#include <optional>

namespace EditorService::Testing {

// A request with one field of each value type the archives know, declared once and read and
// written through all five archives. It keeps the base validateOnLoad, description and
// additionalHelp.
struct SampleRequest : DefaultRequestImpl<SampleRequest> {
    class Serializer;

    std::optional<int> limit;
    int count = 3;
    bool verbose = false;
    std::optional<QString> label;
    std::optional<long long> size;

    static QCommandLineOption limitOption() {
        QCommandLineOption option({QStringLiteral("limit"), QStringLiteral("l")},
                                  QStringLiteral("Limit in seconds"), QStringLiteral("seconds"));
        option.setDefaultValue(QStringLiteral("-1"));
        return option;
    }

    static QCommandLineOption countOption() {
        QCommandLineOption option({QStringLiteral("count"), QStringLiteral("c")},
                                  QStringLiteral("How many times"), QStringLiteral("N"));
        option.setDefaultValue(QStringLiteral("3"));
        return option;
    }

    static QCommandLineOption verboseOption() {
        return QCommandLineOption({QStringLiteral("verbose"), QStringLiteral("v")},
                                  QStringLiteral("Say more"));
    }

    static QCommandLineOption labelOption() {
        return QCommandLineOption(QStringLiteral("label"), QStringLiteral("A name for the run"),
                                  QStringLiteral("text"));
    }

    static QCommandLineOption sizeOption() {
        QCommandLineOption option({QStringLiteral("size"), QStringLiteral("s")},
                                  QStringLiteral("Size in bytes"), QStringLiteral("bytes"));
        option.setDefaultValue(QStringLiteral("4294967296"));
        return option;
    }

    template <class Archive> void serialize(Archive& archive, const unsigned int /*version*/) {
        EditorService::visitField(archive, limit, limitOption());
        EditorService::visitField(archive, count, countOption());
        EditorService::visitField(archive, verbose, verboseOption());
        EditorService::visitField(archive, label, labelOption());
        EditorService::visitField(archive, size, sizeOption());
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }

    bool operator==(const SampleRequest& other) const {
        return limit == other.limit && count == other.count && verbose == other.verbose
               && label == other.label && size == other.size;
    }
};

class SampleRequest::Serializer : public DefaultRequestSerializer<SampleRequest> {};

// A request of one optional field, as a time limit is: with the field empty it writes nothing
// at all.
struct LimitRequest : DefaultRequestImpl<LimitRequest> {
    class Serializer;

    std::optional<int> limit;

    template <class Archive> void serialize(Archive& archive, const unsigned int /*version*/) {
        EditorService::visitField(archive, limit, SampleRequest::limitOption());
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }
};

class LimitRequest::Serializer : public DefaultRequestSerializer<LimitRequest> {};

} // namespace EditorService::Testing
