#pragma once

#include "service/api/EditorServiceExport.h"
#include "service/requests/OptionField.h"
#include "service/requests/ValueText.h"

#include <QCommandLineOption>
#include <QStringList>
#include <boost/archive/detail/common_oarchive.hpp>
#include <boost/serialization/serialization.hpp>
#include <optional>
#include <vector>

namespace EditorService::CLI {

// Writes a request as a command line: `archive << request` runs the request's field visitor and
// appends one element per field with a value to `arguments`, in visit order, as
// "--<first name>=<dumpValue>". An empty optional writes nothing; a bool writes "--<first name>"
// when true and nothing when false, since an option without a value is set by its presence
// alone. No program path stands in front.
class EDITORSERVICE_EXPORT RequestOutputArchive
    : public boost::archive::detail::common_oarchive<RequestOutputArchive> {
public:
    RequestOutputArchive();
    ~RequestOutputArchive() override;

    std::vector<QCommandLineOption> optionStack;
    QStringList arguments;

private:
    friend class boost::archive::detail::interface_oarchive<RequestOutputArchive>;
    friend class boost::archive::detail::common_oarchive<RequestOutputArchive>;

    template <class R> void save_override(const R& request) {
        using boost::serialization::serialize;
        // One visitor serves loading and saving, so it takes the request as non-const.
        serialize(*this, const_cast<R&>(request), 0u);
    }

    template <class T> void save_override(const OptionField<T>& field) {
        optionStack.push_back(field.option);
        saveValue(*field.value);
        optionStack.pop_back();
    }

    template <class T> void saveValue(const T& value) { appendArgument(dumpValue<T>(value)); }

    template <class T> void saveValue(const std::optional<T>& value) {
        if (!value)
            return;
        saveValue(*value);
    }

    void saveValue(const bool& value);
    void appendArgument(const QString& valueText);

    // Boost's bookkeeping never reaches a command line.
    void save_override(const boost::archive::version_type&) {}
    void save_override(const boost::archive::object_id_type&) {}
    void save_override(const boost::archive::object_reference_type&) {}
    void save_override(const boost::archive::class_id_type&) {}
    void save_override(const boost::archive::class_id_optional_type&) {}
    void save_override(const boost::archive::class_id_reference_type&) {}
    void save_override(const boost::archive::class_name_type&) {}
    void save_override(const boost::archive::tracking_type&) {}

    void vsave(const boost::archive::version_type version) override;
    void vsave(const boost::archive::object_id_type id) override;
    void vsave(const boost::archive::object_reference_type reference) override;
    void vsave(const boost::archive::class_id_type id) override;
    void vsave(const boost::archive::class_id_optional_type id) override;
    void vsave(const boost::archive::class_id_reference_type reference) override;
    void vsave(const boost::archive::class_name_type& name) override;
    void vsave(const boost::archive::tracking_type tracking) override;
};

} // namespace EditorService::CLI
