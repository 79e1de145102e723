#include "media/ExistingOutput.h"

#include "platform/foundation/OutputExists.h"
#include "service/api/Error.h"
#include "tests/support/Collect.h"
#include "tests/support/FailedWith.h"

#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace ExistingOutput = EditorService::ExistingOutput;
using EditorService::Error;
using EditorService::Testing::collectToEnd;
using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;

namespace {

class ExistingOutputTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(directory.isValid()); }

    QString path(const QString& name) const { return directory.filePath(name); }
    QString existing(const QString& name) const {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return file.fileName();
    }

    QTemporaryDir directory;
};

} // namespace

TEST_F(ExistingOutputTest, ANewOutputInAWritableFolderIsNeitherSkippedNorRefused) {
    for (const bool overwrite : {false, true}) {
        for (const bool skip : {false, true})
            EXPECT_FALSE(ExistingOutput::isSkipped(path("new.png"), overwrite, skip));
    }
}

TEST_F(ExistingOutputTest, AnExistingOutputIsRefusedSkippedOrReplacedAsTheOptionsSay) {
    const QString output = existing("old.png");
    EXPECT_THAT([&] { ExistingOutput::isSkipped(output, false, false); },
                FailedWith<Error>("Output file exists: " + output.toStdString()));
    EXPECT_TRUE(ExistingOutput::isSkipped(output, false, true));
    EXPECT_FALSE(ExistingOutput::isSkipped(output, true, false));
}

TEST_F(ExistingOutputTest, ADanglingLinkAtTheOutputCountsAsAnExistingOutput) {
    ASSERT_TRUE(QFile::link(path("nowhere"), path("link.png")));
    EXPECT_THAT([&] { ExistingOutput::isSkipped(path("link.png"), false, false); },
                FailedWith<Error>("Output file exists: " + path("link.png").toStdString()));
    EXPECT_TRUE(ExistingOutput::isSkipped(path("link.png"), false, true));
}

TEST_F(ExistingOutputTest, AFolderThatIsMissingOrNoFolderIsRefusedWithTheSystemsReason) {
    EXPECT_THAT([&] { ExistingOutput::isSkipped(path("missing/t.png"), true, false); },
                FailedWith<Error>("Can not write to " + path("missing").toStdString()
                                  + ": No such file or directory"));
    existing("plain");
    EXPECT_THAT(
        [&] { ExistingOutput::isSkipped(path("plain/t.png"), false, false); },
        FailedWith<Error>("Can not write to " + path("plain").toStdString() + ": Not a directory"));
}

TEST_F(ExistingOutputTest, AFolderThatCanNotBeWrittenIsRefusedWithTheSystemsReason) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "root writes anywhere chmod forbids";
    ASSERT_EQ(::mkdir(path("locked").toLocal8Bit().constData(), 0555), 0);
    EXPECT_THAT([&] { ExistingOutput::isSkipped(path("locked/t.png"), false, false); },
                FailedWith<Error>("Can not write to " + path("locked").toStdString()
                                  + ": Permission denied"));
}

TEST_F(ExistingOutputTest, BothChoicesTogetherAreRefused) {
    EXPECT_NO_THROW(ExistingOutput::requireOneChoice(true, false));
    EXPECT_NO_THROW(ExistingOutput::requireOneChoice(false, true));
    EXPECT_THAT([] { ExistingOutput::requireOneChoice(true, true); },
                FailedWith<Error>("--overwrite and --skip-existing can not be given together"));
}

TEST_F(ExistingOutputTest, TheSkippedValueNamesTheServiceAndTheOutput) {
    EXPECT_EQ(ExistingOutput::skipped("thumbnail", "t.png"),
              (nlohmann::json{{"thumbnail", {{"output", "t.png"}, {"skipped", true}}}}));
}

TEST_F(ExistingOutputTest, CheckedFirstRunsTheWorkOnlyWhenTheCheckLetsItThrough) {
    int subscribed = 0;
    const auto work = rxcpp::observable<>::create<nlohmann::json>(
                          [&subscribed](rxcpp::subscriber<nlohmann::json> subscriber) {
                              ++subscribed;
                              subscriber.on_next(nlohmann::json{{"work", true}});
                              subscriber.on_completed();
                          })
                          .as_dynamic();
    const QString old = existing("old.png");

    const auto worked = collectToEnd(
        ExistingOutput::checkedFirst("thumbnail", path("new.png"), false, false, work));
    EXPECT_EQ(worked->values, (std::vector<nlohmann::json>{{{"work", true}}}));
    const auto skipped =
        collectToEnd(ExistingOutput::checkedFirst("thumbnail", old, false, true, work));
    const nlohmann::json skippedValue = ExistingOutput::skipped("thumbnail", old.toStdString());
    EXPECT_EQ(skipped->values, std::vector<nlohmann::json>{skippedValue});
    EXPECT_TRUE(skipped->completed);
    const auto refused =
        collectToEnd(ExistingOutput::checkedFirst("thumbnail", old, false, false, work));
    EXPECT_THAT(refused->error, FailedWith<Error>("Output file exists: " + old.toStdString()));
    EXPECT_EQ(subscribed, 1);
}

TEST_F(ExistingOutputTest, AnOutputThatAppearedDuringTheWorkFailsAsTheCheckWouldSayIt) {
    const auto appeared =
        std::make_exception_ptr(Velmor::OutputExists(path("t.png").toStdString()));
    EXPECT_THAT(ExistingOutput::asCheckFailure(appeared),
                FailedWith<Error>("Output file exists: " + path("t.png").toStdString()));
    const auto other = std::make_exception_ptr(std::runtime_error("No space left on device"));
    EXPECT_EQ(ExistingOutput::asCheckFailure(other), other);
    EXPECT_FALSE(ExistingOutput::asCheckFailure(nullptr));
}
