#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using EditorService::Testing::errorLinesBesidesTheLog;
using EditorService::Testing::HostRun;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::runHost;
using Json = nlohmann::json;

namespace {

const QString input = QString::fromStdString(mediaFixture("ten_seconds.mp4"));

void writeRecord(const QDir& folder, const QString& name, const Json& index, std::int64_t first,
                 std::int64_t frames) {
    const QFileInfo source(input);
    const Json record{{"index", index},
                      {"silent", false},
                      {"count", 4},
                      {"first_frame", first},
                      {"frames", frames},
                      {"start_us", first * 40000},
                      {"header", index.is_string() ? "sound" : "pictures"},
                      {"preset", {{"id", "mp4"}}},
                      {"range", nullptr},
                      {"input",
                       {{"path", input.toStdString()},
                        {"size", source.size()},
                        {"modified_ms", source.lastModified().toMSecsSinceEpoch()}}}};
    EditorService::Testing::writeFile(folder.filePath(name + ".json"),
                                      QByteArray::fromStdString(record.dump()));
    // The check reads the records; the files need only stand there.
    EditorService::Testing::writeFile(folder.filePath(name + ".mp4"), "");
}

// The records of 4 parts of ten_seconds.mp4 and its sound, as segment writes them.
void writeParts(const QDir& folder) {
    QDir().mkpath(folder.path());
    const std::int64_t firsts[] = {0, 62, 125, 187, 250};
    for (int index = 0; index < 4; ++index) {
        writeRecord(folder, QStringLiteral("segment-%1").arg(index, 4, 10, QLatin1Char('0')), index,
                    firsts[index], firsts[index + 1] - firsts[index]);
    }
    writeRecord(folder, QStringLiteral("segment-audio"), "audio", 0, 250);
}

} // namespace

namespace {

// The parts, spoilt one way, and what the join says of it.
struct SpoiltPartsRow {
    const char* name;
    std::function<void(const QDir& folder)> spoil;
    // "%1" stands for the folder.
    const char* message;
};

void changeRecord(const QDir& folder, const QString& name, const std::function<void(Json&)>& edit) {
    QFile file(folder.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    Json record = Json::parse(file.readAll().toStdString());
    file.close();
    edit(record);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(QByteArray::fromStdString(record.dump()));
}

void removeFile(const QDir& folder, const QString& name) {
    ASSERT_TRUE(QFile::remove(folder.filePath(name)));
}

const SpoiltPartsRow spoiltPartsRows[] = {
    {"NoPart",
     [](const QDir& folder) {
         for (const QString& name : folder.entryList(QDir::Files))
             removeFile(folder, name);
     },
     "No segments in %1"},
    {"PartMissing", [](const QDir& folder) { removeFile(folder, "segment-0003.mp4"); },
     "Segment 3 of 4 is missing in %1"},
    {"RecordMissing", [](const QDir& folder) { removeFile(folder, "segment-0001.json"); },
     "Segment 1 of 4 is missing in %1"},
    {"OtherSettings",
     [](const QDir& folder) {
         changeRecord(folder, "segment-0002.json",
                      [](Json& record) { record["preset"]["videoBitrateBps"] = 1000000; });
     },
     "Segment 2 was made with other settings than segment 0"},
    {"OtherHeader",
     [](const QDir& folder) {
         changeRecord(folder, "segment-0001.json", [](Json& record) { record["header"] = "00"; });
     },
     "Segment 1 was made with other settings than segment 0"},
    {"Gap",
     [](const QDir& folder) {
         changeRecord(folder, "segment-0003.json",
                      [](Json& record) { record["first_frame"] = 190; });
     },
     "Segment 3 does not follow segment 2 (frame 187 expected, 190 found)"},
    {"AudioMissing", [](const QDir& folder) { removeFile(folder, "segment-audio.mp4"); },
     "The audio of %1 is missing"},
    {"AudioOfOtherSettings",
     [](const QDir& folder) {
         changeRecord(folder, "segment-audio.json", [](Json& record) { record["count"] = 5; });
     },
     "The audio of %1 was made with other settings than segment 0"},
    {"InputChanged",
     [](const QDir& folder) {
         changeRecord(folder, "segment-0001.json",
                      [](Json& record) { record["input"]["modified_ms"] = 1; });
     },
     "The input changed since segment 0 was made"},
    {"InputChangedSince",
     [](const QDir& folder) {
         for (const QString& name : folder.entryList({QStringLiteral("*.json")})) {
             changeRecord(folder, name, [](Json& record) { record["input"]["size"] = 1; });
         }
     },
     "The input changed since segment 0 was made"},
};

class SpoiltPartsTest : public testing::TestWithParam<SpoiltPartsRow> {};

} // namespace

TEST_P(SpoiltPartsTest, TheJoinFailsNamingThePartAndLeavesNoFile) {
    QTemporaryDir copy;
    const QDir folder(copy.filePath(QStringLiteral("parts")));
    writeParts(folder);
    GetParam().spoil(folder);
    const QDir out(copy.filePath(QStringLiteral("out")));
    QDir().mkpath(out.path());

    const HostRun run = runHost({"join", folder.path(), "--output=" + out.filePath("joined.mp4")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(errorLinesBesidesTheLog(run.errors),
              QList<QByteArray>{
                  QString::fromUtf8(GetParam().message).replace("%1", folder.path()).toUtf8()});
    EXPECT_EQ(out.entryList(QDir::Files | QDir::Hidden | QDir::System), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Join, SpoiltPartsTest, testing::ValuesIn(spoiltPartsRows),
                         [](const auto& info) { return std::string(info.param.name); });

// The joined file's container follows its name, as an export's does: a name no container of
// the preset takes is refused before the parts are read (here there are none).
TEST(JoinOutputTest, AnOutputNoContainerTakesIsRefusedBeforeThePartsAreRead) {
    QTemporaryDir copy;
    const QDir folder(copy.filePath(QStringLiteral("parts")));
    QDir().mkpath(folder.path());

    const HostRun run =
        runHost({"join", folder.path(), "--output=" + copy.filePath(QStringLiteral("joined.avi"))});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(errorLinesBesidesTheLog(run.errors),
              QList<QByteArray>{"Can not write avi files: the preset writes mp4"});
    EXPECT_EQ(QDir(copy.path()).entryList(QDir::Files | QDir::Hidden | QDir::System),
              QStringList());
}
