#pragma once

#include <QString>
#include <nlohmann/json.hpp>

// A QString is a JSON string, in UTF-8, both ways and with nothing lost: text outside ASCII and
// embedded NUL characters survive. Reading anything other than a JSON string raises
// nlohmann::json's type_error 302 "type must be string, but is <kind>". Well-formed text is
// kept exactly; unpaired UTF-16 surrogates and invalid UTF-8 bytes, which are no text, become
// replacement characters.
//
// Both live in QString's own namespace, so nlohmann::json finds them: `json j = text;`,
// `j.get<QString>()`.
void to_json(nlohmann::json& value, const QString& text);
void from_json(const nlohmann::json& value, QString& text);
