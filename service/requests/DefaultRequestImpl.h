#pragma once

#include "service/api/AbstractRequestSerializer.h"
#include "service/api/Request.h"

#include <memory>

namespace EditorService {

// The request side of the generic bases: R names its serializer R::Serializer, a
// default-constructible AbstractRequestSerializer, and gets serializer() from here.
template <class R> struct DefaultRequestImpl : Request {
    DefaultRequestImpl() = default;
    DefaultRequestImpl(const DefaultRequestImpl&) = default;
    DefaultRequestImpl(DefaultRequestImpl&&) = default;
    DefaultRequestImpl& operator=(const DefaultRequestImpl&) = default;
    DefaultRequestImpl& operator=(DefaultRequestImpl&&) = default;
    ~DefaultRequestImpl() override = default;

    // A new R::Serializer on every call, owned by the caller.
    std::unique_ptr<AbstractRequestSerializer> serializer() const override;
};

template <class R>
std::unique_ptr<AbstractRequestSerializer> DefaultRequestImpl<R>::serializer() const {
    return std::make_unique<typename R::Serializer>();
}

} // namespace EditorService
