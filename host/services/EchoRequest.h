#pragma once

#include "service/api/AbstractRequestSerializer.h"
#include "service/requests/DefaultRequestImpl.h"

#include <QStringList>

// The arguments the echo service was given behind the program path, unchanged and in order.
struct EchoRequest : EditorService::DefaultRequestImpl<EchoRequest> {
    class Serializer;

    QStringList arguments;
};

// Reads every argument behind the program path as it stands, so that nothing is an option of
// echo's own; as GNU echo does, "--help" is help only when it stands alone. The JSON form is
// {"arguments": [...]}.
class EchoRequest::Serializer : public EditorService::AbstractRequestSerializer {
public:
    std::unique_ptr<EditorService::Request> loadFromCli(const QStringList& arguments) override;
    std::unique_ptr<EditorService::Request> loadFromJson(const nlohmann::json& value) override;
    QStringList toCli(const EditorService::Request& request) const override;
    nlohmann::json toJson(const EditorService::Request& request) const override;
};
