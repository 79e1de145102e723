#include "platform/foundation/Temporaries.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace Temporaries = Velmor::Temporaries;

namespace {

std::string touch(const QTemporaryDir& dir, const QString& name) {
    const QString path = dir.filePath(name);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    return path.toStdString();
}

} // namespace

class TemporariesTest : public testing::Test {
protected:
    void TearDown() override {
        for (const auto& path : Temporaries::paths())
            Temporaries::remove(path);
    }
    QTemporaryDir dir;
};

TEST_F(TemporariesTest, RemoveAllDeletesEveryAddedFileAndForgetsThem) {
    const auto first = touch(dir, "first.partial");
    const auto second = touch(dir, "second.partial");
    Temporaries::add(first);
    Temporaries::add(second);
    Temporaries::removeAll();
    EXPECT_FALSE(QFile::exists(QString::fromStdString(first)));
    EXPECT_FALSE(QFile::exists(QString::fromStdString(second)));
    EXPECT_TRUE(Temporaries::paths().empty());
}

TEST_F(TemporariesTest, AForgottenFileStaysWhenTheRestIsRemoved) {
    const auto kept = touch(dir, "kept.mp4");
    const auto removed = touch(dir, "removed.partial");
    Temporaries::add(kept);
    Temporaries::add(removed);
    Temporaries::remove(kept);
    Temporaries::removeAll();
    EXPECT_TRUE(QFile::exists(QString::fromStdString(kept)));
    EXPECT_FALSE(QFile::exists(QString::fromStdString(removed)));
}

TEST_F(TemporariesTest, APathAddedTwiceIsListedOnce) {
    Temporaries::add("/nowhere/a.partial");
    Temporaries::add("/nowhere/a.partial");
    Temporaries::add("/nowhere/b.partial");
    const std::vector<std::string> expected{"/nowhere/a.partial", "/nowhere/b.partial"};
    EXPECT_EQ(Temporaries::paths(), expected);
}

TEST_F(TemporariesTest, AFileThatIsAlreadyGoneIsNoFailure) {
    Temporaries::add(dir.filePath("never-made.partial").toStdString());
    Temporaries::removeAll();
    EXPECT_TRUE(Temporaries::paths().empty());
}
