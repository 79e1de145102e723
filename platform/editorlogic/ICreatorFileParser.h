#pragma once

#include "platform/av/Demuxer.h"

#include <QString>
#include <memory>

namespace Media {

class ICreatorFileParser {
public:
    ICreatorFileParser() = default;
    ICreatorFileParser(const ICreatorFileParser&) = delete;
    ICreatorFileParser& operator=(const ICreatorFileParser&) = delete;
    virtual ~ICreatorFileParser();

    // Opens the media file and parses its streams. Throws what opening throws.
    virtual std::unique_ptr<Velmor::AV::Demuxer>
    createFileParser(const QString& path, Velmor::AV::Demuxer::Interrupted interrupted) const = 0;
};

} // namespace Media
