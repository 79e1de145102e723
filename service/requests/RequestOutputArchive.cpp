#include "service/requests/RequestOutputArchive.h"

namespace EditorService::CLI {

RequestOutputArchive::RequestOutputArchive()
    : boost::archive::detail::common_oarchive<RequestOutputArchive>(0) {}

RequestOutputArchive::~RequestOutputArchive() = default;

void RequestOutputArchive::saveValue(const bool& value) {
    if (!value)
        return;
    arguments.append(QStringLiteral("--%1").arg(optionStack.back().names().constFirst()));
}

void RequestOutputArchive::appendArgument(const QString& valueText) {
    arguments.append(
        QStringLiteral("--%1=%2").arg(optionStack.back().names().constFirst(), valueText));
}

void RequestOutputArchive::vsave(const boost::archive::version_type) {}
void RequestOutputArchive::vsave(const boost::archive::object_id_type) {}
void RequestOutputArchive::vsave(const boost::archive::object_reference_type) {}
void RequestOutputArchive::vsave(const boost::archive::class_id_type) {}
void RequestOutputArchive::vsave(const boost::archive::class_id_optional_type) {}
void RequestOutputArchive::vsave(const boost::archive::class_id_reference_type) {}
void RequestOutputArchive::vsave(const boost::archive::class_name_type&) {}
void RequestOutputArchive::vsave(const boost::archive::tracking_type) {}

} // namespace EditorService::CLI
