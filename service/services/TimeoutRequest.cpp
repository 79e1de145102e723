#include "service/services/TimeoutRequest.h"

#include "service/services/TimeoutRequestSerializer.h"

namespace EditorService {

QCommandLineOption TimeoutRequest::timeoutOption() {
    return QCommandLineOption(
        QStringList{QStringLiteral("timeout"), QStringLiteral("t")},
        QStringLiteral("Timeout, process will terminate if the single command will exceeds the "
                       "specified duration"),
        QStringLiteral("seconds"), QStringLiteral("-1"));
}

std::unique_ptr<AbstractRequestSerializer> TimeoutRequest::serializer() const {
    return std::make_unique<TimeoutRequestSerializer>(request ? request->serializer() : nullptr);
}

} // namespace EditorService
