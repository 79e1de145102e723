#pragma once

#include "service/api/Error.h"
#include "service/api/HelpException.h"

#include <string>

namespace EditorService::Testing {

// What loading a request throws, as "<type>: <text>", so that a test pins both in one line.
template <class Load> std::string failureOf(Load load) {
    try {
        load();
    } catch (const CLI::HelpException& help) {
        return std::string("HelpException: ") + help.what();
    } catch (const Error& error) {
        return std::string("Error: ") + error.what();
    } catch (const std::exception& error) {
        return std::string("other: ") + error.what();
    }
    return "no failure";
}

} // namespace EditorService::Testing
