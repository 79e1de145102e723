#pragma once

#include "service/api/AbstractRequestSerializer.h"
#include "service/api/Request.h"

#include <memory>

namespace EditorService {

// The request side of the generic bases: R names its serializer R::Serializer, a
// default-constructible AbstractRequestSerializer, and gets serializer() from here.
//
// The special members are defaulted out of the class, so that an explicit instantiation emits
// them and other libraries call the exporting library's copies.
template <class R> struct DefaultRequestImpl : Request {
    DefaultRequestImpl();
    DefaultRequestImpl(const DefaultRequestImpl&);
    DefaultRequestImpl(DefaultRequestImpl&&) noexcept;
    DefaultRequestImpl& operator=(const DefaultRequestImpl&);
    DefaultRequestImpl& operator=(DefaultRequestImpl&&) noexcept;
    ~DefaultRequestImpl() override;

    // A new R::Serializer on every call, owned by the caller.
    std::unique_ptr<AbstractRequestSerializer> serializer() const override;
};

template <class R> DefaultRequestImpl<R>::DefaultRequestImpl() = default;
template <class R> DefaultRequestImpl<R>::DefaultRequestImpl(const DefaultRequestImpl&) = default;
template <class R>
DefaultRequestImpl<R>::DefaultRequestImpl(DefaultRequestImpl&&) noexcept = default;
template <class R>
DefaultRequestImpl<R>& DefaultRequestImpl<R>::operator=(const DefaultRequestImpl&) = default;
template <class R>
DefaultRequestImpl<R>& DefaultRequestImpl<R>::operator=(DefaultRequestImpl&&) noexcept = default;
template <class R> DefaultRequestImpl<R>::~DefaultRequestImpl() = default;

template <class R>
std::unique_ptr<AbstractRequestSerializer> DefaultRequestImpl<R>::serializer() const {
    return std::make_unique<typename R::Serializer>();
}

} // namespace EditorService
