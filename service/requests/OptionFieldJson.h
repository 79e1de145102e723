#pragma once

#include "platform/serialize/JsonConfig.h"
#include "platform/serialize/JsonDetail.h"
#include "platform/serialize/JsonIArchive.h"
#include "platform/serialize/JsonOArchive.h"
#include "platform/serialize/JsonReference.h"
#include "service/requests/OptionField.h"

#include <optional>
#include <stdexcept>
#include <string>

namespace EditorService::JsonForm {

// The JSON form of one field's value under its key of the head object.
//
// A plain value: read through Serialize::Json::detail::load when the head is an object holding
// the key (null included, which the value's load rejects), else left as the request has it;
// always written.
template <class T> struct Value {
    static void load(const Serialize::Json::iarchive& archive, const std::string& key, T& value) {
        const nlohmann::json& head = archive.headRef();
        if (!head.is_object())
            return;
        const auto found = head.find(key);
        if (found == head.end())
            return;
        Serialize::Json::detail::load(*found, value);
    }

    static void save(Serialize::Json::oarchive& archive, const std::string& key, const T& value) {
        nlohmann::json saved;
        archive.enter(saved);
        Serialize::Json::detail::save(archive.headRef(), value);
        archive.leave();
        archive.headRef()[key] = std::move(saved);
    }
};

// An optional value: a null or, without Config::ExplicitOptionalNulls, a missing key is empty.
// Empty is written as null with the flag and not at all without it.
template <class T> struct Value<std::optional<T>> {
    static void load(const Serialize::Json::iarchive& archive, const std::string& key,
                     std::optional<T>& value) {
        const nlohmann::json& head = archive.headRef();
        if (head.is_object()) {
            const auto found = head.find(key);
            if (found != head.end()) {
                if (found->is_null()) {
                    value.reset();
                    return;
                }
                value.emplace();
                Serialize::Json::detail::load(*found, *value);
                return;
            }
        }
        if (archive.flags() & Serialize::Json::Config::ExplicitOptionalNulls)
            throw std::runtime_error("Optional field is required to be at least null, due to "
                                     "Config::ExplicitOptionalNulls");
        value.reset();
    }

    static void save(Serialize::Json::oarchive& archive, const std::string& key,
                     const std::optional<T>& value) {
        if (value) {
            Value<T>::save(archive, key, *value);
            return;
        }
        if (archive.flags() & Serialize::Json::Config::ExplicitOptionalNulls)
            archive.headRef()[key] = nullptr;
    }
};

template <class T> std::string key(const OptionField<T>& field) {
    return field.option.names().constFirst().toStdString();
}

} // namespace EditorService::JsonForm

namespace Serialize::Json {

// A field is the key of its option's first name in the head object. When the head refers to
// another value ({"$ref": id}), that value is the head for the field's visit.
template <class T> struct Serializer<EditorService::OptionField<T>> {
    static void load(iarchive& archive, const EditorService::OptionField<T>& field) {
        const auto id = getReferenceObjectId(archive.headRef());
        if (id)
            archive.enter(archive.referencedValue(*id));
        EditorService::JsonForm::Value<T>::load(archive, EditorService::JsonForm::key(field),
                                                *field.value);
        if (id)
            archive.leave();
    }

    static void save(oarchive& archive, const EditorService::OptionField<T>& field) {
        EditorService::JsonForm::Value<T>::save(archive, EditorService::JsonForm::key(field),
                                                *field.value);
    }
};

} // namespace Serialize::Json
