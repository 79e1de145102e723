#include "media/ThumbnailService.h"

#include "platform/av/MediaError.h"
#include "platform/editorlogic/StreamProvider.h"
#include "platform/engine/PluginError.h"
#include "service/api/Error.h"
#include "tests/media/MediaServiceFixture.h"

#include <QFile>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Error;
using EditorService::ThumbnailRequest;
using EditorService::ThumbnailService;
using EditorService::Testing::Collected;
using EditorService::Testing::collectToEnd;
using EditorService::Testing::FailedWith;
using EditorService::Testing::failureText;
using Velmor::AV::MediaError;
using Velmor::Core::PluginError;

namespace {

class ThumbnailServiceTest : public EditorService::Testing::MediaServiceFixture {
protected:
    static std::shared_ptr<Collected> thumbnail(QStringList arguments) {
        arguments.prepend(QStringLiteral("thumbnail"));
        ThumbnailService service;
        return collectToEnd(service.run(arguments));
    }

    QString writeScratch(const QString& name, const QByteArray& bytes) const {
        QFile file(scratchFile(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    }
    QByteArray readScratch(const QString& name) const {
        QFile file(scratchFile(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
    }

    // The first bytes of a PNG file.
    static bool isPng(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) && file.read(8) == "\x89PNG\r\n\x1a\n";
    }

    // Thumbnails of one file at several times, one after the other as a script of one job
    // runs them; returns how many streams the media layer opened for them.
    int openingsForThumbnailsOf(const QString& path, int count) {
        for (int i = 0; i < count; ++i) {
            const auto collected =
                thumbnail({path, "--output=" + scratchFile(QStringLiteral("t%1.png").arg(i)),
                           QStringLiteral("--at=%1").arg(i * 100)});
            EXPECT_EQ(collected->values.size(), 1u) << failureText(collected->error);
        }
        const auto* streams = Media::StreamProvider::instance();
        return streams ? streams->openedStreams() : -1;
    }
};

TEST_F(ThumbnailServiceTest, IsKnownAsThumbnail) {
    EXPECT_EQ(ThumbnailService::serviceId(), "thumbnail");
}

TEST_F(ThumbnailServiceTest, WritesTheFrameShownAtTheTimeAndEmitsExactlyItsKeys) {
    startProvider();
    const QString path = fixture("h264_aac.mp4");
    const QString output = scratchFile("t.png");
    const auto collected = thumbnail({path, "--output=" + output, "--at=1500"});
    ASSERT_FALSE(collected->error) << failureText(collected->error);
    EXPECT_TRUE(collected->completed);
    ASSERT_EQ(collected->values.size(), 1u);
    // 25 frames a second: the frame at 1480 ms is on screen until 1520 ms.
    const nlohmann::json expected{{"thumbnail",
                                   {{"path", path.toStdString()},
                                    {"output", output.toStdString()},
                                    {"at_ms", 1500},
                                    {"frame_ms", 1480},
                                    {"width", 320},
                                    {"height", 240}}}};
    EXPECT_EQ(collected->values[0], expected);
    EXPECT_TRUE(isPng(output));
}

TEST_F(ThumbnailServiceTest, WithoutATimeTheFirstFrameIsTaken) {
    startProvider();
    const auto collected = thumbnail({fixture("portrait.mp4"), "--output=" + scratchFile("t.png")});
    ASSERT_EQ(collected->values.size(), 1u) << failureText(collected->error);
    const auto& taken = collected->values[0]["thumbnail"];
    EXPECT_EQ(taken["at_ms"], 0);
    EXPECT_EQ(taken["frame_ms"], 0);
    EXPECT_EQ(taken["width"], 180);
    EXPECT_EQ(taken["height"], 320);
}

TEST_F(ThumbnailServiceTest, TheFrameSizeAndFillModeGiveTheSizeOfThePicture) {
    startProvider();
    const QString output = scratchFile("t.png");
    const auto collected =
        thumbnail({fixture("h264_aac.mp4"), "--output=" + output, "--preset-frame-size=160:160",
                   "--preset-resize-fill-mode=Fit"});
    ASSERT_EQ(collected->values.size(), 1u) << failureText(collected->error);
    EXPECT_EQ(collected->values[0]["thumbnail"]["width"], 160);
    EXPECT_EQ(collected->values[0]["thumbnail"]["height"], 160);
    EXPECT_TRUE(isPng(output));
}

TEST_F(ThumbnailServiceTest, TheOriginalFrameSizeKeepsTheFramesSize) {
    startProvider();
    const auto collected =
        thumbnail({fixture("wide_1921x1080.mp4"), "--output=" + scratchFile("t.png"),
                   "--preset-frame-size=original"});
    ASSERT_EQ(collected->values.size(), 1u) << failureText(collected->error);
    EXPECT_EQ(collected->values[0]["thumbnail"]["width"], 1921);
    EXPECT_EQ(collected->values[0]["thumbnail"]["height"], 1080);
}

TEST_F(ThumbnailServiceTest, TheRuntimeStartsOnlyWhenTheCommandRuns) {
    startProvider();
    ThumbnailService service;
    const auto stream = service.run(
        QStringList{"thumbnail", fixture("noaudio.mp4"), "--output=" + scratchFile("t.png")});
    EXPECT_EQ(countOf("CoreManager::Initialize"), 0);
    EXPECT_EQ(countOf("Composition::Controller::Controller"), 0);
    const auto collected = collectToEnd(stream);
    ASSERT_EQ(collected->values.size(), 1u) << failureText(collected->error);
    EXPECT_EQ(countOf("CoreManager::Initialize"), 1);
    EXPECT_EQ(countOf("Composition::Controller::Controller"), 1);
}

TEST_F(ThumbnailServiceTest, ManyThumbnailsOfOneFileOpenItOnceWithTheDefaultCacheLifetime) {
    startProvider();
    EXPECT_EQ(openingsForThumbnailsOf(fixture("h264_aac.mp4"), 8), 1);
}

TEST_F(ThumbnailServiceTest, WithoutACacheEveryThumbnailOpensTheFileAgain) {
    startProvider({"--cache-ttl=0"});
    EXPECT_EQ(openingsForThumbnailsOf(fixture("h264_aac.mp4"), 8), 8);
    EXPECT_EQ(Media::StreamProvider::instance()->cachedStreams(), 0);
}

TEST_F(ThumbnailServiceTest, AMissingFileFailsWithMediaError) {
    startProvider();
    const QString path = scratchFile("missing.mp4");
    const auto collected = thumbnail({path, "--output=" + scratchFile("t.png")});
    EXPECT_TRUE(collected->values.empty());
    EXPECT_THAT(collected->error,
                FailedWith<MediaError>("Can not open media file: " + path.toStdString()
                                       + ": No such file or directory"));
    EXPECT_FALSE(QFile::exists(scratchFile("t.png")));
}

TEST_F(ThumbnailServiceTest, AFileThatIsNoMediaFailsWithMediaError) {
    startProvider();
    const QString path = fixture("notmedia.txt");
    EXPECT_THAT(thumbnail({path, "--output=" + scratchFile("t.png")})->error,
                FailedWith<MediaError>("Can not open media file: " + path.toStdString()
                                       + ": Invalid data found when processing input"));
}

TEST_F(ThumbnailServiceTest, AFileWithoutVideoFailsWithMediaError) {
    startProvider();
    const QString path = fixture("tone.wav");
    const auto collected = thumbnail({path, "--output=" + scratchFile("t.png")});
    EXPECT_THAT(collected->error,
                FailedWith<MediaError>("No video stream in " + path.toStdString()));
    EXPECT_FALSE(QFile::exists(scratchFile("t.png")));
}

TEST_F(ThumbnailServiceTest, ATimePastTheEndFailsWithMediaErrorGivingTheDuration) {
    startProvider();
    const QString path = fixture("h264_aac.mp4");
    EXPECT_THAT(thumbnail({path, "--output=" + scratchFile("t.png"), "--at=90000"})->error,
                FailedWith<MediaError>("Time 90000 ms is past the end of " + path.toStdString()
                                       + " (2000 ms)"));
}

TEST_F(ThumbnailServiceTest, AMissingFolderFailsWithErrorBeforeTheRuntimeStarts) {
    startProvider();
    const QString output = scratchFile("no/such/dir/t.png");
    EXPECT_THAT(thumbnail({fixture("h264_aac.mp4"), "--output=" + output})->error,
                FailedWith<Error>("Can not write to " + scratchFile("no/such/dir").toStdString()
                                  + ": No such file or directory"));
    EXPECT_EQ(countOf("CoreManager::Initialize"), 0);
}

TEST_F(ThumbnailServiceTest, AnOutputFolderThatIsAFileFailsWithError) {
    startProvider();
    writeScratch("plain", "not a folder");
    EXPECT_THAT(
        thumbnail({fixture("h264_aac.mp4"), "--output=" + scratchFile("plain/t.png")})->error,
        FailedWith<Error>("Can not write to " + scratchFile("plain").toStdString()
                          + ": Not a directory"));
}

TEST_F(ThumbnailServiceTest, AnExistingOutputFailsWithErrorReadsNothingAndStaysAsItWas) {
    startProvider();
    const QString output = writeScratch("t.png", "old");
    EXPECT_THAT(thumbnail({fixture("h264_aac.mp4"), "--output=" + output})->error,
                FailedWith<Error>("Output file exists: " + output.toStdString()));
    EXPECT_EQ(countOf("CoreManager::Initialize"), 0);
    EXPECT_EQ(readScratch("t.png"), "old");
}

TEST_F(ThumbnailServiceTest, ALinkAtTheOutputCountsAsAnExistingOutput) {
    startProvider();
    ASSERT_TRUE(QFile::link(scratchFile("nowhere"), scratchFile("t.png")));
    EXPECT_THAT(thumbnail({fixture("h264_aac.mp4"), "--output=" + scratchFile("t.png")})->error,
                FailedWith<Error>("Output file exists: " + scratchFile("t.png").toStdString()));
}

TEST_F(ThumbnailServiceTest, OverwriteReplacesAnExistingOutput) {
    startProvider();
    const QString output = writeScratch("t.png", "old");
    const auto collected =
        thumbnail({fixture("h264_aac.mp4"), "--output=" + output, "--overwrite"});
    ASSERT_EQ(collected->values.size(), 1u) << failureText(collected->error);
    EXPECT_TRUE(isPng(output));
}

TEST_F(ThumbnailServiceTest, SkipExistingEmitsTheSkippedValueAndReadsNothing) {
    startProvider();
    const QString output = writeScratch("t.png", "old");
    const auto collected =
        thumbnail({fixture("h264_aac.mp4"), "--output=" + output, "--skip-existing"});
    ASSERT_FALSE(collected->error) << failureText(collected->error);
    EXPECT_TRUE(collected->completed);
    const nlohmann::json skipped{
        {"thumbnail", {{"output", output.toStdString()}, {"skipped", true}}}};
    EXPECT_EQ(collected->values, std::vector<nlohmann::json>{skipped});
    EXPECT_EQ(countOf("CoreManager::Initialize"), 0);
    EXPECT_EQ(readScratch("t.png"), "old");
}

TEST_F(ThumbnailServiceTest, SkipExistingWithoutAnOutputTakesTheThumbnail) {
    startProvider();
    const QString output = scratchFile("t.png");
    const auto collected =
        thumbnail({fixture("h264_aac.mp4"), "--output=" + output, "--skip-existing"});
    ASSERT_EQ(collected->values.size(), 1u) << failureText(collected->error);
    EXPECT_TRUE(collected->values[0]["thumbnail"].contains("frame_ms"));
    EXPECT_TRUE(isPng(output));
}

TEST_F(ThumbnailServiceTest, WithDecodersDisabledAThumbnailFailsWithPluginError) {
    startProvider({"--disable-plugin=DecodersFF"});
    EXPECT_THAT(thumbnail({fixture("h264_aac.mp4"), "--output=" + scratchFile("t.png")})->error,
                FailedWith<PluginError>("Can not read media: the plug-in DecodersFF is disabled"));
}

TEST_F(ThumbnailServiceTest, WithEncodersDisabledAThumbnailFailsWithPluginError) {
    startProvider({"--disable-plugin=EncodersFF"});
    EXPECT_THAT(
        thumbnail({fixture("h264_aac.mp4"), "--output=" + scratchFile("t.png")})->error,
        FailedWith<PluginError>("Can not encode CODEC_ID_PNG: the plug-in EncodersFF is disabled"));
    EXPECT_FALSE(QFile::exists(scratchFile("t.png")));
}

TEST_F(ThumbnailServiceTest, WithoutAProviderTheStreamFailsWithErrorAndStartsNothing) {
    const auto collected = thumbnail({fixture("h264_aac.mp4"), "--output=" + scratchFile("t.png")});
    EXPECT_TRUE(collected->values.empty());
    EXPECT_THAT(collected->error,
                FailedWith<Error>("No runtime: the process has no GlobalContextProvider"));
    EXPECT_EQ(countOf("CoreManager::Initialize"), 0);
}

} // namespace
