#pragma once

#include "service/api/EditorServiceExport.h"
#include "service/requests/OptionField.h"

#include <QCommandLineOption>
#include <QList>
#include <boost/archive/detail/common_oarchive.hpp>
#include <boost/serialization/serialization.hpp>

namespace EditorService::CLI {

// Collects a request's options: `dumper << request` runs the request's field visitor and
// appends each field's option to `options`, in visit order. No value is touched.
class EDITORSERVICE_EXPORT OptionDumper
    : public boost::archive::detail::common_oarchive<OptionDumper> {
public:
    OptionDumper();
    ~OptionDumper() override;

    QList<QCommandLineOption> options;

private:
    friend class boost::archive::detail::interface_oarchive<OptionDumper>;
    friend class boost::archive::detail::common_oarchive<OptionDumper>;

    template <class R> void save_override(const R& request) {
        using boost::serialization::serialize;
        // One visitor serves loading and saving, so it takes the request as non-const.
        serialize(*this, const_cast<R&>(request), 0u);
    }

    template <class T> void save_override(const OptionField<T>& field) {
        options.append(field.option);
    }

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
