#pragma once

#include "platform/av/Rational.h"

#include <cstdint>
#include <memory>
#include <string>

struct AVCodecContext;

namespace Velmor::AV {

class Frame;
class Packet;

// How a video encoder spends its bits.
enum class RateControl {
    // The encoder's quality-led control (a constant rate factor), capped at `bitRate` by a
    // rate buffer of twice that rate.
    Auto,
    // A constant quality (`quality`, the encoder's rate factor), whatever it costs.
    Quality,
    // An average of `bitRate` bits per second.
    Bitrate,
};

struct VideoEncoderSettings {
    // The library's encoder: "libx264", "libx265".
    std::string encoder;
    int width = 0;
    int height = 0;
    // An AVPixelFormat (AV::pixelFormat("yuv420p")).
    int pixelFormat = -1;
    // The unit of the frames' timestamps: the input stream's, never derived from the rate.
    Rational timeBase;
    Rational frameRate;
    // 0: as many as the library likes.
    int threads = 0;
    RateControl rateControl = RateControl::Auto;
    std::int64_t bitRate = 0;
    // The rate factor for Auto and Quality; below 0 the encoder's own default (23 for x264,
    // 28 for x265).
    double quality = -1;
    // The encoder's speed preset ("veryfast"); empty for its default.
    std::string speed;
    // Set when the muxer wants the codec's headers out of band (MP4 does).
    bool globalHeader = false;
    // Headers that depend on the settings alone, never on the pictures: streams encoded apart
    // with the same settings then join by copying.
    bool stitchable = false;
};

struct AudioEncoderSettings {
    // The library's encoder: "aac".
    std::string encoder;
    // A rate the encoder takes; another one is replaced by the nearest it does.
    int sampleRate = 0;
    int channels = 0;
    std::int64_t bitRate = 0;
    bool globalHeader = false;
};

// The frames an audio encoder takes, known before it opens: what a source of its samples is to
// convert them to.
struct AudioEncoderInput {
    // An AVSampleFormat.
    int sampleFormat = -1;
    int sampleRate = 0;
    int channels = 0;
};

// Encodes frames into packets, in the send and receive rhythm of the codec; a null frame drains
// what the codec still holds. Packets come out in the encoder's time base (timeBase()), each
// with its duration. One thread at a time.
class Encoder {
public:
    // Throw MediaError "Can not encode with <encoder>: <reason>"; an encoder the libraries lack
    // fails with "Encoder not found".
    static std::unique_ptr<Encoder> video(const VideoEncoderSettings& settings);
    static std::unique_ptr<Encoder> audio(const AudioEncoderSettings& settings);
    // What audio() with these settings will take: the encoder's sample format, the rate of its
    // list nearest to the wanted one, the channels. Throws as audio() for an encoder the
    // libraries lack.
    static AudioEncoderInput audioInput(const AudioEncoderSettings& settings);
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;
    ~Encoder();

    AVCodecContext* context() const;
    // The codec's short name: "h264", "hevc", "aac".
    std::string codecName() const;
    Rational timeBase() const;
    // Audio: the samples each frame must have (1024 for AAC); 0 for any number.
    int frameSize() const;
    // Audio: the AVSampleFormat, rate and channels frames must have.
    int sampleFormat() const;
    int sampleRate() const;
    int channels() const;

    // Hands a frame over (its timestamp in timeBase()), or with null starts the drain. False
    // when the codec must give out packets before it takes this frame. A picture's type as
    // decoded is dropped, so that the encoder chooses its own key frames.
    bool send(Frame* frame);
    // The next packet; false when the codec needs more input or is drained.
    bool receive(Packet& packet);
    bool drained() const;

private:
    Encoder();
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::AV
