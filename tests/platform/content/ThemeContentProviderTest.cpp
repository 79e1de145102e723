#include "platform/content/ThemeContentProvider.h"
#include "platform/package/PackageDirectory.h"
#include "platform/project/ProjectError.h"
#include "tests/support/FailedWith.h"

#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;

namespace {

class ThemeContentProviderTest : public testing::Test {
protected:
    void TearDown() override { Package::setPackageDirectory(QString()); }

    void write(const QString& name, const QByteArray& text) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    QTemporaryDir folder;
};

TEST_F(ThemeContentProviderTest, TheShippedThemesAreClassicAndTravel) {
    Package::setPackageDirectory(SHIPPED_PACKAGES_DIR);
    const Theme::ContentProvider provider;
    EXPECT_EQ(provider.items(), (QStringList{"Classic", "Travel"}));
    const auto classic = provider.theme("Classic");
    ASSERT_TRUE(classic);
    EXPECT_EQ(classic->transition->at("type"), "fade");
    EXPECT_EQ(classic->title->at("position"), "bottom-center");
    EXPECT_EQ(provider.theme("Travel")->transition->at("type"), "slide-left");
    EXPECT_FALSE(provider.theme("classic"));
    EXPECT_FALSE(provider.themes().front().description.empty());
}

TEST_F(ThemeContentProviderTest, PackagesWithoutAThemeAreNoThemes) {
    write("a.json", R"({"name": "Fonts"})");
    write("b.json", R"({"theme": {"transition": {"type": "dissolve"}}})");
    write("c.txt", R"({"name": "Text", "theme": {}})");
    Package::setPackageDirectory(folder.path());
    const Theme::ContentProvider provider;
    EXPECT_EQ(provider.themeNames(), (std::vector<std::string>{"b"}));
    EXPECT_FALSE(provider.theme("b")->title);
}

TEST_F(ThemeContentProviderTest, ABadThemeIsReportedAsAProjectWouldBe) {
    write("noir.json", R"({"name": "Noir", "theme": {"transition": {"type": "zoom-blur"}}})");
    Package::setPackageDirectory(folder.path());
    const Theme::ContentProvider provider;
    const std::string message =
        "unknown transition \"zoom-blur\" at theme.transition.type; available: "
        "fade, fade-black, fade-white, dissolve, wipe-left, wipe-right, "
        "wipe-up, wipe-down, slide-left, slide-right, slide-up, "
        "slide-down, circle-open, circle-close";
    EXPECT_THAT([&] { provider.themes(); },
                FailedWith<Project::ProjectError>(folder.filePath("noir.json").toStdString() + ": "
                                                  + message));
    EXPECT_THAT([&] { provider.theme("Noir"); },
                FailedWith<Project::ProjectError>(folder.filePath("noir.json").toStdString() + ": "
                                                  + message));
}

TEST_F(ThemeContentProviderTest, ThemesAreReadOnceFromTheDirectoryOfTheFirstQuestion) {
    write("a.json", R"({"name": "One", "theme": {}})");
    Package::setPackageDirectory(folder.path());
    const Theme::ContentProvider provider;
    EXPECT_EQ(provider.items(), QStringList{"One"});
    Package::setPackageDirectory(SHIPPED_PACKAGES_DIR);
    EXPECT_EQ(provider.items(), QStringList{"One"});
}

} // namespace
