#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MeasuredLoudness.h"
#include "tests/support/MediaFixtures.h"

#include <QTemporaryDir>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

using EditorService::Testing::HostRun;
using EditorService::Testing::Loudness;
using EditorService::Testing::measuredLoudness;
using EditorService::Testing::runHost;
using EditorService::Testing::runTool;
using EditorService::Testing::ToolRun;
using EditorService::Testing::writeFile;

namespace {

// A voice on the right from 1 s to 2.5 s (the video clip's sound), and under it a 250 Hz tone
// on the left as music, ducked by 12 dB while the voice speaks; the mix brought to -16 LUFS.
std::string spokenProject() {
    const std::string media = MEDIA_FIXTURES_DIR;
    return R"({"reelsmith_project": 1,
      "output": {"width": 64, "height": 48, "frame_rate": "25/1"},
      "tracks": [
        {"type": "video", "clips": [{"source": ")"
           + media + R"(/speech.mov"}]},
        {"type": "audio", "clips": [{"source": ")"
           + media + R"(/music.wav", "loop": true}],
         "duck": {"amount_db": -12, "threshold_db": -30, "attack_ms": 200, "release_ms": 800}}],
      "loudness_lufs": -16})";
}

class ProjectSoundTest : public testing::Test {
protected:
    QString path(const QString& name) const { return directory.filePath(name); }

    // The export's left channel (the music's) as ffmpeg decodes it, 48000 samples a second.
    std::vector<float> musicChannel(const QString& file) {
        const ToolRun run = runTool("ffmpeg", {"-nostdin", "-v", "error", "-i", file, "-af",
                                               "pan=mono|c0=c0", "-f", "f32le", "-"});
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        std::vector<float> samples(static_cast<std::size_t>(run.output.size()) / sizeof(float));
        std::memcpy(samples.data(), run.output.constData(), samples.size() * sizeof(float));
        return samples;
    }

    // The RMS level in dB of the samples from `from` to `to` seconds.
    static double levelDb(const std::vector<float>& samples, double from, double to) {
        double sum = 0;
        const auto first = static_cast<std::size_t>(from * 48000);
        const auto end = std::min(samples.size(), static_cast<std::size_t>(to * 48000));
        for (std::size_t i = first; i < end; ++i)
            sum += double(samples[i]) * samples[i];
        return 10 * std::log10(sum / double(std::max<std::size_t>(1, end - first)));
    }

    QTemporaryDir directory;
};

// Read back from the exported file (AAC in MP4) by ffmpeg alone: its ebur128 loudness and
// true peak, and the music's level before the voice and under it.
TEST_F(ProjectSoundTest, AnExportedProjectHasItsLoudnessAndItsMusicDucksUnderTheVoice) {
    const QString edit = writeFile(path("spoken.json"), QByteArray::fromStdString(spokenProject()));
    const HostRun run = runHost({"export", edit, "--output=" + path("spoken.mp4")});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();

    const Loudness loudness = measuredLoudness(path("spoken.mp4").toStdString());
    EXPECT_NEAR(loudness.integrated, -16, 1);
    EXPECT_LE(loudness.truePeak, -1);

    const std::vector<float> music = musicChannel(path("spoken.mp4"));
    ASSERT_GE(music.size(), 48000u * 39 / 10);
    const double alone = levelDb(music, 0.2, 0.9);
    const double underTheVoice = levelDb(music, 1.4, 2.4);
    const double after = levelDb(music, 3.4, 3.9);
    EXPECT_NEAR(underTheVoice - alone, -12, 1);
    EXPECT_NEAR(after - alone, 0, 1);
}

} // namespace
