#include "platform/editorlogic/ExecutorFactory.h"

#include "platform/foundation/CallLog.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using Velmor::Testing::CallLog;

TEST(ExecutorFactoryTest, NamesAParserOnlyForAFileThatExists) {
    QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    QFile file(directory.filePath("clip.mov"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    const Core::ExecutorFactory factory;
    EXPECT_EQ(factory.fileParserFor(directory.filePath("clip.mov")), "FileParser:mov");
    EXPECT_EQ(factory.fileParserFor(directory.filePath("missing.mov")), QString());
    EXPECT_EQ(factory.fileParserFor(directory.path()), QString());
}

TEST(ExecutorFactoryTest, NamesDecodersByCodec) {
    const Core::ExecutorFactory factory;
    EXPECT_EQ(factory.videoDecoderFor("h264"), "VideoDecoder:h264");
    EXPECT_EQ(factory.audioDecoderFor("aac"), "AudioDecoder:aac");
}

TEST(ExecutorFactoryTest, ConstructionAndDestructionAreRecorded) {
    CallLog::clear();
    { const Core::ExecutorFactory factory; }
    const std::vector<std::string> expected{"Core::ExecutorFactory::ExecutorFactory",
                                            "Core::ExecutorFactory::~ExecutorFactory"};
    EXPECT_EQ(CallLog::entries(), expected);
}
