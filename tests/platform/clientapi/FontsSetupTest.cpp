#include "platform/clientapi/FontsSetup.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <stdexcept>

using namespace Velmor::ClientAPI;
using Velmor::ioPath;
using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;

namespace {

void touch(const QString& path) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
}

} // namespace

class FontsSetupTest : public testing::Test {
protected:
    void SetUp() override {
        Probe::clear();
        CallLog::clear();
        ASSERT_TRUE(directory.isValid());
    }

    QString path(const QString& name) const { return QDir(directory.path()).filePath(name); }

    // The registry lives as long as the process, so each test looks at its own directory.
    QStringList registeredHere() const {
        const QString prefix = QFileInfo(directory.path()).absoluteFilePath() + '/';
        QStringList fonts;
        for (const QString& font : RegisteredFonts()) {
            if (font.startsWith(prefix))
                fonts.append(font);
        }
        return fonts;
    }

    QTemporaryDir directory;
};

TEST_F(FontsSetupTest, RegistersTheFontFilesOfTheDirectoryInNameOrder) {
    touch(path("b.otf"));
    touch(path("a.ttf"));
    touch(path("c.ttc"));
    touch(path("readme.txt"));
    QDir(directory.path()).mkdir("nested.ttf");
    FontsSetup(ioPath(directory.path()));
    const QStringList expected{QFileInfo(path("a.ttf")).absoluteFilePath(),
                               QFileInfo(path("b.otf")).absoluteFilePath(),
                               QFileInfo(path("c.ttc")).absoluteFilePath()};
    EXPECT_EQ(registeredHere(), expected);
}

TEST_F(FontsSetupTest, AMissingDirectoryRegistersNone) {
    const int before = RegisteredFonts().size();
    FontsSetup(ioPath(path("no-such-directory")));
    EXPECT_EQ(RegisteredFonts().size(), before);
    EXPECT_EQ(CallLog::entries(), std::vector<std::string>{"FontsSetup"});
}

TEST_F(FontsSetupTest, AFontRegisteredTwiceIsListedOnce) {
    touch(path("a.ttf"));
    FontsSetup(ioPath(directory.path()));
    FontsSetup(ioPath(directory.path()));
    EXPECT_EQ(registeredHere().size(), 1);
    const std::vector<std::string> expected{"FontsSetup", "FontsSetup"};
    EXPECT_EQ(CallLog::entries(), expected);
}

TEST_F(FontsSetupTest, AnInjectedFailureRegistersNone) {
    touch(path("a.ttf"));
    Probe::failNext("FontsSetup");
    EXPECT_THROW(FontsSetup(ioPath(directory.path())), std::runtime_error);
    EXPECT_TRUE(registeredHere().isEmpty());
}
