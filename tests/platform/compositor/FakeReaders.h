#pragma once

#include "platform/compositor/FrameReader.h"
#include "platform/effects/Canvas.h"

#include <QFileInfo>
#include <map>
#include <vector>

namespace EditorService::Testing {

// Readers of pictures that tell the time they were asked for: a uniform picture whose luma is
// 16 + the milliseconds / 10 (up to 2350 ms), of the size given for the file's name (64x36 for
// any other). Every open and every time asked is recorded.
class FakeReaders : public Composition::IFrameReaders {
public:
    struct Log {
        int opened = 0;
        int open = 0;
        std::vector<std::int64_t> times;
    };

    static std::uint8_t lumaOf(std::int64_t milliseconds) {
        return static_cast<std::uint8_t>(16 + milliseconds / 10);
    }

    std::unique_ptr<Composition::IFrameReader> open(const QString& file) override {
        ++log->opened;
        const auto size = sizes.find(QFileInfo(file).fileName());
        return std::make_unique<Reader>(log, size == sizes.end() ? Velmor::AV::Size{64, 36}
                                                                 : size->second);
    }

    std::shared_ptr<Log> log = std::make_shared<Log>();
    std::map<QString, Velmor::AV::Size> sizes;

private:
    class Reader : public Composition::IFrameReader {
    public:
        Reader(std::shared_ptr<Log> log, Velmor::AV::Size size)
            : log(std::move(log))
            , size(size) {
            ++this->log->open;
        }
        ~Reader() override { --log->open; }

        const Velmor::AV::Frame& frameAt(std::int64_t milliseconds) override {
            log->times.push_back(milliseconds);
            picture = Effects::canvas(size, Effects::YuvColour{lumaOf(milliseconds), 128, 128});
            return picture;
        }

    private:
        std::shared_ptr<Log> log;
        Velmor::AV::Size size;
        Velmor::AV::Frame picture;
    };
};

} // namespace EditorService::Testing
