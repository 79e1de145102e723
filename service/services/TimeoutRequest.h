#pragma once

#include "service/api/Request.h"
#include "service/requests/OptionField.h"

#include <QCommandLineOption>
#include <optional>

namespace EditorService {

// A request around a request: another service's request and a limit on its silence, in whole
// seconds. Copies share the wrapped request; a move leaves the source's `request` null.
struct EDITORSERVICE_EXPORT TimeoutRequest : Request {
    // "--timeout"/"-t" with the value name "seconds" and the default text "-1".
    static QCommandLineOption timeoutOption();

    // A TimeoutRequestSerializer around the wrapped request's serializer, or around none.
    std::unique_ptr<AbstractRequestSerializer> serializer() const override;

    // The limit is the one field of the archives; the wrapped request is its serializer's.
    template <class Archive> void serialize(Archive& archive, const unsigned int /*version*/) {
        visitField(archive, timeout, timeoutOption());
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }

    std::shared_ptr<Request> request;
    std::optional<int> timeout;
};

} // namespace EditorService
