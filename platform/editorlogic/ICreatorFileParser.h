#pragma once

#include <QString>

namespace Media {

class ICreatorFileParser {
public:
    ICreatorFileParser() = default;
    ICreatorFileParser(const ICreatorFileParser&) = delete;
    ICreatorFileParser& operator=(const ICreatorFileParser&) = delete;
    virtual ~ICreatorFileParser();

    // Names the parser that reads a media file of the given path; empty when none can.
    virtual QString fileParserFor(const QString& path) const = 0;
};

} // namespace Media
