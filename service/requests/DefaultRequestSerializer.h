#pragma once

#include "platform/serialize/JsonIArchive.h"
#include "platform/serialize/JsonOArchive.h"
#include "service/api/AbstractRequestSerializer.h"
#include "service/api/Request.h"
#include "service/requests/OptionFieldJson.h"
#include "service/requests/RequestInputArchive.h"
#include "service/requests/RequestOutputArchive.h"

#include <QStringList>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <typeinfo>

namespace EditorService {

// The serializer side of the generic bases: R is default-constructible, derives from Request and
// has the field visitor
//     template <class Archive> void serialize(Archive& archive, const unsigned int version);
// Loading validates the request once from a command line and twice from JSON. toCli and toJson
// throw std::bad_cast for a request of another class.
//
// The special members are defaulted out of the class, so that an explicit instantiation emits
// them and other libraries call the exporting library's copies.
template <class R> class DefaultRequestSerializer : public AbstractRequestSerializer {
public:
    DefaultRequestSerializer();
    DefaultRequestSerializer(const DefaultRequestSerializer&);
    DefaultRequestSerializer& operator=(const DefaultRequestSerializer&);
    ~DefaultRequestSerializer() override;

    std::unique_ptr<Request> loadFromCli(const QStringList& arguments) override;
    std::unique_ptr<Request> loadFromJson(const nlohmann::json& value) override;
    QStringList toCli(const Request& request) const override;
    nlohmann::json toJson(const Request& request) const override;

    // Flags of the JSON archives (Serialize::Json::Config).
    std::int32_t config = 0;
};

template <class R> DefaultRequestSerializer<R>::DefaultRequestSerializer() = default;
template <class R>
DefaultRequestSerializer<R>::DefaultRequestSerializer(const DefaultRequestSerializer&) = default;
template <class R>
DefaultRequestSerializer<R>&
DefaultRequestSerializer<R>::operator=(const DefaultRequestSerializer&) = default;
template <class R> DefaultRequestSerializer<R>::~DefaultRequestSerializer() = default;

template <class R>
std::unique_ptr<Request> DefaultRequestSerializer<R>::loadFromCli(const QStringList& arguments) {
    auto request = std::make_unique<R>();
    {
        CLI::RequestInputArchive archive(arguments);
        archive >> *request;
    }
    return request;
}

template <class R>
std::unique_ptr<Request> DefaultRequestSerializer<R>::loadFromJson(const nlohmann::json& value) {
    auto request = std::make_unique<R>();
    {
        Serialize::Json::iarchive archive(value, config);
        archive >> *request;
    }
    request->validateOnLoad();
    return request;
}

template <class R> QStringList DefaultRequestSerializer<R>::toCli(const Request& request) const {
    const R& typed = dynamic_cast<const R&>(request);
    CLI::RequestOutputArchive archive;
    archive << typed;
    return archive.arguments;
}

template <class R>
nlohmann::json DefaultRequestSerializer<R>::toJson(const Request& request) const {
    const R& typed = dynamic_cast<const R&>(request);
    nlohmann::json result;
    {
        Serialize::Json::oarchive archive(result, config);
        archive << typed;
    }
    return result;
}

} // namespace EditorService
