#pragma once

#include <string>
#include <vector>

namespace Content {

// One thing a project may name, with what it does.
struct Item {
    std::string name;
    std::string description;
};

} // namespace Content
