#pragma once

#include "service/api/AbstractRequestSerializer.h"

#include <QString>
#include <memory>

namespace EditorService {

// The base of everything that can be handed to a service. It holds no data, so that a
// derived request is its fields alone, and declares no move operations of its own.
struct EDITORSERVICE_EXPORT Request {
    Request() = default;
    Request(const Request&) = default;
    Request& operator=(const Request&) = default;
    virtual ~Request();

    // Called on a freshly loaded request; throws when the request is invalid. Must give the
    // same verdict when repeated, since a request loaded from JSON is validated twice.
    virtual void validateOnLoad() const;
    // One text about the request's purpose for the help output; empty when not set.
    virtual QString description() const;
    // Text added behind the generated help; empty when nothing is added.
    virtual QString additionalHelp() const;
    // A new serializer, owned by the caller, that reads and writes this request's class.
    virtual std::unique_ptr<AbstractRequestSerializer> serializer() const = 0;
};

} // namespace EditorService
