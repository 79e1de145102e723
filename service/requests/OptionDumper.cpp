#include "service/requests/OptionDumper.h"

namespace EditorService::CLI {

OptionDumper::OptionDumper()
    : boost::archive::detail::common_oarchive<OptionDumper>(0) {}

OptionDumper::~OptionDumper() = default;

void OptionDumper::vsave(const boost::archive::version_type) {}
void OptionDumper::vsave(const boost::archive::object_id_type) {}
void OptionDumper::vsave(const boost::archive::object_reference_type) {}
void OptionDumper::vsave(const boost::archive::class_id_type) {}
void OptionDumper::vsave(const boost::archive::class_id_optional_type) {}
void OptionDumper::vsave(const boost::archive::class_id_reference_type) {}
void OptionDumper::vsave(const boost::archive::class_name_type&) {}
void OptionDumper::vsave(const boost::archive::tracking_type) {}

} // namespace EditorService::CLI
