#pragma once

#include "service/api/AbstractRequestSerializer.h"
#include "service/api/AbstractService.h"
#include "service/api/Request.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>
#include <typeinfo>

namespace EditorService {

// The service side of the generic bases: a service of requests R writes only the typed run.
// The untyped run narrows each request to a copy of its R; a request of another class ends the
// typed stream with std::bad_cast through on_error.
//
// The special members are defaulted out of the class, so that an explicit instantiation emits
// them and other libraries call the exporting library's copies.
template <class R> class DefaultServiceImpl : public AbstractService {
public:
    DefaultServiceImpl();
    DefaultServiceImpl(const DefaultServiceImpl&);
    DefaultServiceImpl(DefaultServiceImpl&&) noexcept;
    DefaultServiceImpl& operator=(const DefaultServiceImpl&);
    DefaultServiceImpl& operator=(DefaultServiceImpl&&) noexcept;
    ~DefaultServiceImpl() override;

    using AbstractService::run;

    // A new R::Serializer on every call, owned by the caller.
    std::unique_ptr<AbstractRequestSerializer> requestSerializer() const override;
    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<std::shared_ptr<Request>>& requests) override;
    virtual rxcpp::observable<nlohmann::json> run(const rxcpp::observable<R>& requests) = 0;
};

template <class R> DefaultServiceImpl<R>::DefaultServiceImpl() = default;
template <class R> DefaultServiceImpl<R>::DefaultServiceImpl(const DefaultServiceImpl&) = default;
template <class R>
DefaultServiceImpl<R>::DefaultServiceImpl(DefaultServiceImpl&&) noexcept = default;
template <class R>
DefaultServiceImpl<R>& DefaultServiceImpl<R>::operator=(const DefaultServiceImpl&) = default;
template <class R>
DefaultServiceImpl<R>& DefaultServiceImpl<R>::operator=(DefaultServiceImpl&&) noexcept = default;
template <class R> DefaultServiceImpl<R>::~DefaultServiceImpl() = default;

template <class R>
std::unique_ptr<AbstractRequestSerializer> DefaultServiceImpl<R>::requestSerializer() const {
    return std::make_unique<typename R::Serializer>();
}

template <class R>
rxcpp::observable<nlohmann::json>
DefaultServiceImpl<R>::run(const rxcpp::observable<std::shared_ptr<Request>>& requests) {
    rxcpp::observable<std::shared_ptr<Request>> source = requests;
    // The service keeps a copy, so a later change to the shared request does not reach it.
    rxcpp::observable<R> typed = source
                                     .map([](const std::shared_ptr<Request>& request) -> R {
                                         return R(dynamic_cast<const R&>(*request));
                                     })
                                     .as_dynamic();
    return run(typed);
}

} // namespace EditorService
