#include "host/services/FailService.h"

#include "service/api/Error.h"

#include <chrono>

using EditorService::Error;

namespace {

rxcpp::observable<nlohmann::json> failure(const QString& message, int after) {
    const Error error(message.toStdString());
    if (after == 0)
        return rxcpp::observable<>::error<nlohmann::json>(error).as_dynamic();
    return rxcpp::observable<>::create<nlohmann::json>(
               [error, after](rxcpp::subscriber<nlohmann::json> subscriber) {
                   auto worker = rxcpp::schedulers::make_new_thread().create_worker();
                   subscriber.add(worker.get_subscription());
                   worker.schedule(worker.now() + std::chrono::milliseconds(after),
                                   [subscriber, error](const rxcpp::schedulers::schedulable&) {
                                       subscriber.on_error(std::make_exception_ptr(error));
                                   });
               })
        .as_dynamic();
}

} // namespace

QCommandLineOption FailRequest::messageOption() {
    return QCommandLineOption(QStringLiteral("message"), QStringLiteral("The error's message."),
                              QStringLiteral("text"), QStringLiteral("failed"));
}

QCommandLineOption FailRequest::afterOption() {
    return QCommandLineOption(QStringLiteral("after"),
                              QStringLiteral("Milliseconds before the failure."),
                              QStringLiteral("ms"), QStringLiteral("0"));
}

QString FailRequest::description() const {
    return QStringLiteral("Fail with --message after --after milliseconds.");
}

void FailRequest::validateOnLoad() const {
    if (after < 0)
        throw Error(QStringLiteral("--after must not be negative, is %1").arg(after).toStdString());
}

QString FailService::serviceId() {
    return QStringLiteral("fail");
}

rxcpp::observable<nlohmann::json> FailService::run(const rxcpp::observable<FailRequest>& requests) {
    return requests
        .flat_map(
            [](const FailRequest& request) { return failure(request.message, request.after); })
        .as_dynamic();
}
