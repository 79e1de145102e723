#pragma once

#include "platform/av/AudioBlock.h"
#include "platform/av/MediaError.h"
#include "platform/mix/SampleTimes.h"
#include "platform/mix/SoundReader.h"

#include <QFileInfo>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <utility>
#include <vector>

namespace EditorService::Testing {

// Readers of made-up sounds, by file name: a sound is a value for each sample of the file (at
// the mix's rate, from the file's start) on the left, its negative on the right, silence after
// its length. A name it does not know fails as a missing file. Every open is recorded.
class FakeSoundReaders : public Mixing::ISoundReaders {
public:
    struct Sound {
        std::function<float(std::int64_t sample)> value;
        std::int64_t samples = std::numeric_limits<std::int64_t>::max();
    };
    struct Log {
        std::vector<std::pair<QString, std::int64_t>> opened;
        int open = 0;
    };

    // A sound that tells the file's sample: its index over a million.
    static float indexValue(std::int64_t sample) { return static_cast<float>(sample) / 1e6f; }

    FakeSoundReaders() {
        sounds["a.mp4"] = {indexValue};
        sounds["clip.mp4"] = {indexValue};
        sounds["music.mp3"] = {[](std::int64_t) { return 0.5f; }};
    }

    std::unique_ptr<Mixing::ISoundReader> open(const QString& file, std::int64_t fromMs,
                                               Velmor::AV::AudioShape shape) override {
        log->opened.emplace_back(QFileInfo(file).fileName(), fromMs);
        const auto sound = sounds.find(QFileInfo(file).fileName());
        if (sound == sounds.end())
            throw Velmor::AV::MediaError("Can not open media file: " + file.toStdString()
                                         + ": No such file or directory");
        return std::make_unique<Reader>(log, sound->second,
                                        Mixing::SampleTimes(shape.sampleRate).sampleAt(fromMs));
    }

    std::map<QString, Sound> sounds;
    std::shared_ptr<Log> log = std::make_shared<Log>();

private:
    class Reader : public Mixing::ISoundReader {
    public:
        Reader(std::shared_ptr<Log> log, Sound sound, std::int64_t next)
            : log(std::move(log))
            , sound(std::move(sound))
            , next(next) {
            ++this->log->open;
        }
        ~Reader() override { --log->open; }

        void read(Velmor::AV::Frame& block, int offset, int count) override {
            for (int index = 0; index < count; ++index, ++next) {
                const float value = next < sound.samples ? sound.value(next) : 0.0f;
                Velmor::AV::channelOf(block, 0)[offset + index] = value;
                Velmor::AV::channelOf(block, 1)[offset + index] = -value;
            }
        }
        void skip(std::int64_t count) override { next += count; }

    private:
        std::shared_ptr<Log> log;
        Sound sound;
        std::int64_t next;
    };
};

} // namespace EditorService::Testing
