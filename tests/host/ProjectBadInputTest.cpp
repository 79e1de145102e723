#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using EditorService::Testing::errorLinesBesidesTheLog;
using EditorService::Testing::HostRun;
using EditorService::Testing::runHost;
using EditorService::Testing::writeFile;

namespace {

// A bad project and the words it fails with after "<project>: "; "{F}" stands for the media
// fixtures' folder in both.
struct BadProject {
    const char* name;
    const char* text;
    const char* message;
};

const BadProject badProjects[] = {
    {"ATransitionLongerThanTheClipBefore",
     R"({"reelsmith_project": 1, "tracks": [{"type": "video", "clips": [
        {"source": "{F}/h264_aac.mp4", "out_ms": 800},
        {"color": "#203040", "duration_ms": 2000,
         "transition": {"type": "fade", "duration_ms": 1000}}]}]})",
     "tracks[0].clips[1].transition: 1000 ms is longer than the clip before it (800 ms)"},
    {"AMissingSource",
     R"({"reelsmith_project": 1, "tracks": [{"type": "video", "clips": [
        {"color": "#203040", "duration_ms": 2000}, {"source": "{F}/h264_aac.mp4"},
        {"source": "b.mp4"}]}]})",
     "tracks[0].clips[2].source: Can not open media file: b.mp4: No such file or directory"},
    {"AnOutPastTheEndOfItsFile",
     R"({"reelsmith_project": 1, "tracks": [{"type": "video", "clips": [
        {"source": "{F}/h264_aac.mp4", "in_ms": 200, "out_ms": 90000}]}]})",
     "tracks[0].clips[0].out_ms: 90000 ms is past the end of {F}/h264_aac.mp4 (2000 ms)"},
    {"AnUnknownTransition",
     R"({"reelsmith_project": 1, "tracks": [{"type": "video", "clips": [
        {"source": "{F}/h264_aac.mp4"},
        {"source": "{F}/h264_aac.mp4", "transition": {"type": "zoom-blur"}}]}]})",
     "unknown transition \"zoom-blur\" at tracks[0].clips[1].transition.type; available: fade, "
     "fade-black, fade-white, dissolve, wipe-left, wipe-right, wipe-up, wipe-down, slide-left, "
     "slide-right, slide-up, slide-down, circle-open, circle-close"},
    {"AnUnknownKey",
     R"({"reelsmith_project": 1, "tracks": [{"type": "video", "clips": [
        {"source": "{F}/h264_aac.mp4", "speed": 2}]}]})",
     "unknown key \"speed\" at tracks[0].clips[0].speed; available: source, in_ms, out_ms, "
     "duration_ms, fit, volume_db, pan_zoom, transition"},
    {"AWrongType",
     R"({"reelsmith_project": 1, "tracks": [{"type": "video", "clips": [
        {"source": "{F}/h264_aac.mp4", "in_ms": "200"}]}]})",
     "tracks[0].clips[0].in_ms: expected a whole number of milliseconds, 0 or more, found "
     "\"200\""},
    {"JsonThatDoesNotParse", "{\"reelsmith_project\": 1,\n \"tracks\": }",
     "invalid JSON at line 2, column 12: syntax error while parsing value - unexpected '}'; "
     "expected '[', '{', or a literal"},
    {"NoVideoTrack", R"({"reelsmith_project": 1, "tracks": []})",
     "tracks: no video track; a project has exactly one"},
    {"NoClips", R"({"reelsmith_project": 1, "tracks": [{"type": "video", "clips": []}]})",
     "tracks[0].clips: the video track has no clips"},
};

QByteArray withFixtures(const char* text) {
    return QByteArray(text).replace("{F}", MEDIA_FIXTURES_DIR);
}

class ProjectBadInputTest : public testing::TestWithParam<BadProject> {
protected:
    QTemporaryDir directory;
};

// Every command that takes a project fails before anything is rendered, with the project's
// path and the place of the bad value, exit status 1, and no file.
TEST_P(ProjectBadInputTest, ABadProjectFailsBeforeAnythingIsRendered) {
    const QString edit = writeFile(directory.filePath("edit.json"), withFixtures(GetParam().text));
    const QByteArray message = edit.toUtf8() + ": " + withFixtures(GetParam().message);
    for (const QStringList& command :
         {QStringList{"export", edit, "--output=" + directory.filePath("out.mp4")},
          QStringList{"thumbnail", edit, "--output=" + directory.filePath("out.png")},
          QStringList{"probe", edit}}) {
        const HostRun run = runHost(command);
        EXPECT_EQ(run.exitCode, 1) << command.first().toStdString();
        EXPECT_EQ(errorLinesBesidesTheLog(run.errors), QList<QByteArray>{message})
            << command.first().toStdString();
    }
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files), QStringList{"edit.json"});
}

INSTANTIATE_TEST_SUITE_P(Projects, ProjectBadInputTest, testing::ValuesIn(badProjects),
                         [](const testing::TestParamInfo<BadProject>& info) {
                             return std::string(info.param.name);
                         });

} // namespace
