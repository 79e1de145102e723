#pragma once

#include "platform/av/AudioFifo.h"
#include "platform/av/Encoder.h"
#include "platform/av/Muxer.h"
#include "platform/av/Packet.h"
#include "platform/av/Resampler.h"
#include "platform/mix/Mixer.h"
#include "tests/support/MeasuredLoudness.h"
#include "tests/support/NewFile.h"

#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <cstring>
#include <string>
#include <vector>

namespace EditorService::Testing {

// Writes the whole of a mix into a WAV file of 32-bit float samples, through the media
// libraries' encoder and muxer, as an export writes its sound.
inline void writeWav(Mixing::Mixer& mixer, const std::string& path) {
    const Mixing::AudioFormat format = mixer.format();
    const NewFile file(path);
    Velmor::AV::Muxer muxer(file.descriptor, path, "wav");
    const auto encoder =
        Velmor::AV::Encoder::audio({"pcm_f32le", format.sampleRate, format.channels, 0, false});
    const int stream = muxer.addStream(*encoder);
    muxer.writeHeader();
    Velmor::AV::Resampler converter(encoder->sampleFormat(), format.sampleRate, format.channels);
    Velmor::AV::Packet packet;
    auto encode = [&](Velmor::AV::Frame* frame) {
        while (!encoder->send(frame)) {
            while (encoder->receive(packet))
                muxer.write(stream, packet);
        }
        while (encoder->receive(packet))
            muxer.write(stream, packet);
    };
    Velmor::AV::Frame block;
    while (mixer.next(block)) {
        Velmor::AV::Frame converted = converter.convert(block, {1, format.sampleRate});
        encode(&converted);
    }
    encode(nullptr);
    muxer.finish();
}

// What a run of ffmpeg or ffprobe printed.
struct ToolOutput {
    QByteArray output;
    QByteArray errors;
};

inline ToolOutput runTool(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(120000);
    return {process.readAllStandardOutput(), process.readAllStandardError()};
}

// A sound file's samples as ffmpeg decodes them: stereo, interleaved.
inline std::vector<float> decodedSamples(const std::string& path) {
    const QByteArray raw = runTool("ffmpeg", {"-v", "error", "-i", QString::fromStdString(path),
                                              "-f", "f32le", "-ac", "2", "-"})
                               .output;
    std::vector<float> samples(static_cast<std::size_t>(raw.size()) / sizeof(float));
    std::memcpy(samples.data(), raw.constData(), samples.size() * sizeof(float));
    return samples;
}

} // namespace EditorService::Testing
