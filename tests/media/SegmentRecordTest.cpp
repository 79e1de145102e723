#include "media/SegmentRecord.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using EditorService::SegmentRecord;

namespace {

SegmentRecord part() {
    SegmentRecord record;
    record.index = 2;
    record.count = 4;
    record.firstFrame = 125;
    record.frames = 62;
    record.startUs = 5000000;
    record.header = "ab12";
    record.preset = {{"id", "mp4"}};
    record.range = nlohmann::json::array({0, 10000});
    record.input = "in.mp4";
    record.inputSize = 1234;
    record.inputModifiedMs = 99;
    return record;
}

} // namespace

TEST(SegmentRecordTest, ReadsBackWhatItWrote) {
    QTemporaryDir folder;
    const QString path = folder.filePath("segment-0002.json");
    part().write(path);
    const auto read = SegmentRecord::read(path);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->toJson(), part().toJson());
    EXPECT_EQ(read->toJson().at("index"), 2);
    EXPECT_EQ(read->toJson().at("input").at("modified_ms"), 99);
}

TEST(SegmentRecordTest, TheSoundIsIndexAudio) {
    SegmentRecord sound = part();
    sound.audio = true;
    EXPECT_EQ(sound.toJson().at("index"), "audio");
    EXPECT_TRUE(SegmentRecord::fromJson(sound.toJson()).audio);
}

TEST(SegmentRecordTest, AMissingOrBrokenRecordIsNone) {
    QTemporaryDir folder;
    EXPECT_FALSE(SegmentRecord::read(folder.filePath("none.json")));
    QFile broken(folder.filePath("broken.json"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("{\"index\": 1");
    broken.close();
    EXPECT_FALSE(SegmentRecord::read(broken.fileName()));
}

TEST(SegmentRecordTest, PartsAgreeOnEverythingButThePart) {
    SegmentRecord other = part();
    other.index = 3;
    other.firstFrame = 187;
    EXPECT_TRUE(part().agreesWith(other));
    other.header = "cd34";
    EXPECT_FALSE(part().agreesWith(other));
    // The sound's header is another stream's.
    other.audio = true;
    EXPECT_TRUE(part().agreesWith(other));
    other.count = 5;
    EXPECT_FALSE(part().agreesWith(other));
}

TEST(SegmentRecordTest, TheInputIsTheSameWhenItsSizeAndTimeAre) {
    SegmentRecord other = part();
    EXPECT_TRUE(part().sameInputAs(other));
    other.inputModifiedMs = 100;
    EXPECT_FALSE(part().sameInputAs(other));
}
