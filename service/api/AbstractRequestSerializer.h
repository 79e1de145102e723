#pragma once

#include "service/api/EditorServiceExport.h"

#include <QStringList>
#include <memory>
#include <nlohmann/json.hpp>

namespace EditorService {

struct Request;

// Converts one class of request to and from a command line and a JSON value. toCli and
// toJson raise std::bad_cast for a request of a foreign class; a list from toCli can be read
// again by loadFromCli of the same serializer.
class EDITORSERVICE_EXPORT AbstractRequestSerializer {
public:
    AbstractRequestSerializer() = default;
    AbstractRequestSerializer(const AbstractRequestSerializer&) = default;
    virtual ~AbstractRequestSerializer();

    virtual std::unique_ptr<Request> loadFromCli(const QStringList& arguments) = 0;
    virtual std::unique_ptr<Request> loadFromJson(const nlohmann::json& value) = 0;
    virtual QStringList toCli(const Request& request) const = 0;
    virtual nlohmann::json toJson(const Request& request) const = 0;
};

} // namespace EditorService
