#include "service/launcher/CLILauncher.h"

#include "platform/apputil/Customization.h"
#include "platform/foundation/CallLog.h"
#include "platform/model/Translator.h"
#include "platform/settings/Settings.h"
#include "platform/settings/SettingsManager.h"
#include "tests/platform/editorutil/VirtualSlot.h"
#include "tests/support/FailedWith.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <ostream>
#include <stdexcept>
#include <thread>

using EditorService::Testing::FailedWith;
using EditorService::Testing::virtualSlot;
using Velmor::Testing::CallLog;

namespace {

const QString customizationFile = QStringLiteral("ReelSmithCustom.ini");

const std::vector<std::string> constructionWithOneStore{
    "Launcher::Launcher",
    "CustomizationManager::CustomizationManager",
    "CustomizationManager::GetProductVersion",
    "Util::VersionToString",
    "Customization::init",
    "CustomizationManager::GetOrganizationName",
    "CustomizationManager::GetProductName",
    "CustomizationManager::GetApplicationSettingsId",
    "SettingsManager::SettingsManager(ReelSmith)",
    "CustomizationManager::GetProductSettingsId",
    "AppLocations::GetSettingsLocation",
    "Settings::init",
    "Customization::currentLocale",
    "Translator::setCurrentLocale(en_US)",
    "Launcher::registerInstance",
};

const QByteArray customizationWithProductStore = "[Customization]\n"
                                                 "ProductSettingsId=ReelSmithHeadless\n";

void writeFile(const QString& path, const QByteArray& contents) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    file.write(contents);
}

// Another kind of application object, registered for as long as it lives.
class OtherLauncher : public Launcher {
public:
    OtherLauncher() { registerInstance(this); }
    ~OtherLauncher() override { unregisterInstance(this); }
};

// Each test runs in a working directory of its own, where it may put a customization file, and
// keeps the settings stores out of the user's directories. The translator's locale is
// process-wide and the launcher sets it, so each test starts from a fresh process's.
class CLILauncherTest : public testing::Test {
protected:
    void SetUp() override {
        Velmor::Testing::resetTranslator();
        identity = {QCoreApplication::applicationVersion(), QCoreApplication::organizationName(),
                    QCoreApplication::applicationName()};
        ASSERT_TRUE(workingDirectory.isValid());
        ASSERT_TRUE(userDirectory.isValid());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, userDirectory.path());
        previousDirectory = QDir::currentPath();
        ASSERT_TRUE(QDir::setCurrent(workingDirectory.path()));
        CallLog::clear();
    }

    void TearDown() override {
        CallLog::setObserver({});
        QDir::setCurrent(previousDirectory);
        Velmor::Testing::resetTranslator();
        QCoreApplication::setApplicationVersion(identity.version);
        QCoreApplication::setOrganizationName(identity.organization);
        QCoreApplication::setApplicationName(identity.application);
    }

    void writeCustomization(const QByteArray& contents) {
        writeFile(QDir::current().absoluteFilePath(customizationFile), contents);
    }

    static std::vector<std::string> entriesFrom(const std::string& first) {
        const auto entries = CallLog::entries();
        const auto start = std::find(entries.begin(), entries.end(), first);
        return {start, entries.end()};
    }

    QTemporaryDir workingDirectory;
    QTemporaryDir userDirectory;
    QString previousDirectory;
    // The process's identity before the test, which the launcher changes.
    struct {
        QString version, organization, application;
    } identity;
};

void expectAllWeakReferencesExpired() {
    const auto context = Settings::context();
    EXPECT_TRUE(context.customizationManager.expired());
    EXPECT_TRUE(context.productSettings.expired());
    EXPECT_TRUE(context.applicationSettings.expired());
    EXPECT_TRUE(Customization::lookAndFeelManager().expired());
}

} // namespace

TEST_F(CLILauncherTest, InstanceIsNullBeforeAnyLauncherIsBuilt) {
    EXPECT_EQ(CLILauncher::instance(), nullptr);
}

TEST_F(CLILauncherTest, InstanceIsTheLauncherOnceBuilt) {
    const CLILauncher launcher;
    EXPECT_EQ(CLILauncher::instance(), &launcher);
    EXPECT_EQ(Launcher::instance(), &launcher);
}

TEST_F(CLILauncherTest, ConstructionRunsItsStepsInOrder) {
    const CLILauncher launcher;
    EXPECT_EQ(CallLog::entries(), constructionWithOneStore);
}

TEST_F(CLILauncherTest, ConstructionMakesTheProductStoreAfterReadingItsId) {
    writeCustomization(customizationWithProductStore);
    const CLILauncher launcher;
    auto expected = constructionWithOneStore;
    const auto afterId =
        std::find(expected.begin(), expected.end(), "CustomizationManager::GetProductSettingsId");
    expected.insert(afterId + 1, "SettingsManager::SettingsManager(ReelSmithHeadless)");
    EXPECT_EQ(CallLog::entries(), expected);
}

TEST_F(CLILauncherTest, EachStepFindsTheStepsBeforeItDone) {
    QCoreApplication::setApplicationVersion("0.0");
    QCoreApplication::setOrganizationName("Before");
    QCoreApplication::setApplicationName("Before");
    struct Moment {
        QString version, organization, application, translatorLocale;
        bool lookAndFeelAlive;
        CLILauncher* instance;
    };
    std::map<std::string, Moment> moments;
    CallLog::setObserver([&moments](const std::string& entry) {
        moments[entry] = Moment{QCoreApplication::applicationVersion(),
                                QCoreApplication::organizationName(),
                                QCoreApplication::applicationName(),
                                Translator::currentLocale(),
                                !Customization::lookAndFeelManager().expired(),
                                CLILauncher::instance()};
    });
    const CLILauncher launcher;
    CallLog::setObserver({});

    EXPECT_EQ(moments.at("Util::VersionToString").version, "0.0");
    EXPECT_EQ(moments.at("Customization::init").version, "1.0.0");
    EXPECT_FALSE(moments.at("Customization::init").lookAndFeelAlive);
    EXPECT_TRUE(moments.at("CustomizationManager::GetOrganizationName").lookAndFeelAlive);
    EXPECT_EQ(moments.at("CustomizationManager::GetOrganizationName").organization, "Before");
    EXPECT_EQ(moments.at("CustomizationManager::GetProductName").organization, "Velmor");
    EXPECT_EQ(moments.at("CustomizationManager::GetProductName").application, "Before");
    EXPECT_EQ(moments.at("CustomizationManager::GetApplicationSettingsId").application,
              "ReelSmith");
    EXPECT_EQ(moments.at("Settings::init").translatorLocale, "");
    EXPECT_EQ(moments.at("Launcher::registerInstance").translatorLocale, "en_US");
    for (const auto& [entry, moment] : moments)
        EXPECT_EQ(moment.instance, nullptr) << entry;
    EXPECT_EQ(CLILauncher::instance(), &launcher);
}

TEST_F(CLILauncherTest, GivesTheProcessTheDefaultIdentity) {
    const CLILauncher launcher;
    EXPECT_EQ(QCoreApplication::applicationVersion(), "1.0.0");
    EXPECT_EQ(QCoreApplication::organizationName(), "Velmor");
    EXPECT_EQ(QCoreApplication::applicationName(), "ReelSmith");
}

TEST_F(CLILauncherTest, GivesTheProcessTheIdentityOfTheCustomizationFile) {
    writeCustomization("[Customization]\n"
                       "ProductVersion=2.5.1.77\n"
                       "OrganizationName=Acme Studios\n"
                       "ProductName=ReelSmith Pro\n"
                       "ApplicationName=ReelSmith Pro Editor\n");
    const CLILauncher launcher;
    EXPECT_EQ(QCoreApplication::applicationVersion(), "2.5.1");
    EXPECT_EQ(QCoreApplication::organizationName(), "Acme Studios");
    // The product name names the process, not the application name.
    EXPECT_EQ(QCoreApplication::applicationName(), "ReelSmith Pro");
}

TEST_F(CLILauncherTest, SettingsStoresBelongToVelmorWhateverTheOrganization) {
    writeCustomization("[Customization]\n"
                       "OrganizationName=Acme Studios\n"
                       "ApplicationSettingsId=AcmeCut\n"
                       "ProductSettingsId=AcmeCutHeadless\n");
    const CLILauncher launcher;
    const auto application =
        std::dynamic_pointer_cast<Velmor::App::SettingsManager>(Settings::applicationSettings());
    const auto product =
        std::dynamic_pointer_cast<Velmor::App::SettingsManager>(Settings::productSettings());
    ASSERT_TRUE(application && product);
    EXPECT_EQ(application->GetSettingsId(), "AcmeCut");
    EXPECT_EQ(application->GetOrganization(), "Velmor");
    EXPECT_EQ(product->GetSettingsId(), "AcmeCutHeadless");
    EXPECT_EQ(product->GetOrganization(), "Velmor");
}

TEST_F(CLILauncherTest, AnEmptyProductSettingsIdMakesOneStoreServeBoth) {
    const CLILauncher launcher;
    const auto context = Settings::context();
    ASSERT_FALSE(context.applicationSettings.expired());
    EXPECT_EQ(context.productSettings.lock(), context.applicationSettings.lock());
    // The launcher's two fields are the only owners.
    EXPECT_EQ(context.applicationSettings.use_count(), 2);
}

TEST_F(CLILauncherTest, TheSharedStoreDiesWhenTheSecondFieldIsReleased) {
    auto launcher = std::make_unique<CLILauncher>();
    CallLog::clear();
    launcher.reset();
    const auto entries = CallLog::entries();
    EXPECT_EQ(entries, (std::vector<std::string>{"Launcher::unregisterInstance",
                                                 "SettingsManager::~SettingsManager(ReelSmith)",
                                                 "CustomizationManager::~CustomizationManager",
                                                 "Launcher::~Launcher"}));
    EXPECT_TRUE(Settings::context().productSettings.expired());
}

TEST_F(CLILauncherTest, ANonEmptyProductSettingsIdMakesASecondStore) {
    writeCustomization(customizationWithProductStore);
    const CLILauncher launcher;
    const auto context = Settings::context();
    EXPECT_NE(context.productSettings.lock(), context.applicationSettings.lock());
    EXPECT_EQ(Settings::productSettings()->GetSettingsId(), "ReelSmithHeadless");
    EXPECT_EQ(Settings::applicationSettings()->GetSettingsId(), "ReelSmith");
    EXPECT_EQ(context.productSettings.use_count(), 1);
    EXPECT_EQ(context.applicationSettings.use_count(), 1);
}

TEST_F(CLILauncherTest, DestructionRunsItsStepsInOrder) {
    writeCustomization(customizationWithProductStore);
    auto launcher = std::make_unique<CLILauncher>();
    struct Moment {
        bool lookAndFeelAlive;
        bool customizationAlive;
        Launcher* registered;
    };
    std::vector<std::pair<std::string, Moment>> moments;
    CallLog::setObserver([&moments](const std::string& entry) {
        moments.emplace_back(entry, Moment{!Customization::lookAndFeelManager().expired(),
                                           !Settings::context().customizationManager.expired(),
                                           Launcher::instance()});
    });
    CallLog::clear();
    launcher.reset();
    CallLog::setObserver({});

    EXPECT_EQ(CallLog::entries(),
              (std::vector<std::string>{"Launcher::unregisterInstance",
                                        "SettingsManager::~SettingsManager(ReelSmithHeadless)",
                                        "SettingsManager::~SettingsManager(ReelSmith)",
                                        "CustomizationManager::~CustomizationManager",
                                        "Launcher::~Launcher"}));
    ASSERT_EQ(moments.size(), 5u);
    // The look-and-feel manager goes between the application store and the customization.
    EXPECT_TRUE(moments[2].second.lookAndFeelAlive);
    EXPECT_FALSE(moments[3].second.lookAndFeelAlive);
    // A manager's weak references expire as its destructor starts.
    EXPECT_TRUE(moments[2].second.customizationAlive);
    EXPECT_FALSE(moments[4].second.customizationAlive);
}

TEST_F(CLILauncherTest, InstanceIsNullOnceTheDestructorHasRunItsFirstStep) {
    auto launcher = std::make_unique<CLILauncher>();
    std::vector<std::pair<std::string, CLILauncher*>> seen;
    std::vector<Launcher*> registered;
    CallLog::setObserver([&seen, &registered](const std::string& entry) {
        seen.emplace_back(entry, CLILauncher::instance());
        registered.push_back(Launcher::instance());
    });
    launcher.reset();
    CallLog::setObserver({});
    ASSERT_FALSE(seen.empty());
    EXPECT_EQ(seen.front().first, "Launcher::unregisterInstance");
    for (std::size_t index = 1; index < seen.size(); ++index) {
        EXPECT_EQ(seen[index].second, nullptr) << seen[index].first;
        EXPECT_EQ(registered[index], nullptr) << seen[index].first;
    }
    EXPECT_EQ(CLILauncher::instance(), nullptr);
}

TEST_F(CLILauncherTest, WeakReferencesHandedOutDieWithTheLauncher) {
    writeCustomization(customizationWithProductStore);
    auto launcher = std::make_unique<CLILauncher>();
    const auto context = Settings::context();
    EXPECT_EQ(context.customizationManager.use_count(), 1);
    EXPECT_EQ(context.productSettings.use_count(), 1);
    EXPECT_EQ(context.applicationSettings.use_count(), 1);
    EXPECT_EQ(Customization::lookAndFeelManager().use_count(), 1);
    launcher.reset();
    expectAllWeakReferencesExpired();
}

TEST_F(CLILauncherTest, SettingsLocationIsTheSettingsLocationOfTheNewIdentity) {
    const CLILauncher launcher;
    EXPECT_EQ(Settings::context().settingsLocation,
              Velmor::ioPath(QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)));
    EXPECT_TRUE(Settings::context().settingsLocation.ToQString().endsWith("/Velmor/ReelSmith"));
}

TEST_F(CLILauncherTest, TheTranslatorSpeaksTheLocaleOfTheLookAndFeel) {
    const CLILauncher launcher;
    EXPECT_EQ(Customization::currentLocale(), "en_US");
    EXPECT_EQ(Translator::currentLocale(), "en_US");
}

TEST_F(CLILauncherTest, InstanceIsNullWhileAnotherKindOfLauncherIsRegistered) {
    const OtherLauncher other;
    EXPECT_EQ(Launcher::instance(), &other);
    EXPECT_EQ(CLILauncher::instance(), nullptr);
}

TEST_F(CLILauncherTest, AMalformedCustomizationFileFailsConstructionWithNothingRegistered) {
    writeCustomization("[Customization]\nProductVersion=1.x\n");
    QCoreApplication::setApplicationVersion("0.0");
    EXPECT_THAT(
        [&] { CLILauncher launcher; },
        FailedWith<std::runtime_error>(QStringLiteral("Invalid product version \"1.x\" in %1")
                                           .arg(QDir::current().absoluteFilePath(customizationFile))
                                           .toStdString()));
    EXPECT_EQ(CLILauncher::instance(), nullptr);
    EXPECT_EQ(Launcher::instance(), nullptr);
    EXPECT_EQ(QCoreApplication::applicationVersion(), "0.0");
    EXPECT_EQ(CallLog::entries(),
              (std::vector<std::string>{"Launcher::Launcher",
                                        "CustomizationManager::CustomizationManager",
                                        "Launcher::~Launcher"}));
}

TEST_F(CLILauncherTest, ALaterFailureReleasesWhatWasBuiltInReverseOrder) {
    writeCustomization(customizationWithProductStore);
    const OtherLauncher other;
    CallLog::clear();
    EXPECT_THAT([&] { CLILauncher launcher; },
                FailedWith<std::logic_error>("A launcher is already registered"));
    EXPECT_EQ(CLILauncher::instance(), nullptr);
    EXPECT_EQ(Launcher::instance(), &other);
    EXPECT_EQ(entriesFrom("Launcher::registerInstance"),
              (std::vector<std::string>{"Launcher::registerInstance",
                                        "SettingsManager::~SettingsManager(ReelSmithHeadless)",
                                        "SettingsManager::~SettingsManager(ReelSmith)",
                                        "CustomizationManager::~CustomizationManager",
                                        "Launcher::~Launcher"}));
    expectAllWeakReferencesExpired();
}

TEST_F(CLILauncherTest, ALauncherCanBeBuiltAfterAFailedOne) {
    writeCustomization("[Customization]\nProductVersion=1.x\n");
    EXPECT_THROW(CLILauncher(), std::runtime_error);
    ASSERT_TRUE(QFile::remove(QDir::current().absoluteFilePath(customizationFile)));
    const CLILauncher launcher;
    EXPECT_EQ(CLILauncher::instance(), &launcher);
}

TEST_F(CLILauncherTest, CoreIsNeverInitializedAndThereIsNoActionParserAtAnyMoment) {
    auto launcher = std::make_unique<CLILauncher>();
    EXPECT_FALSE(launcher->isCoreInitialized());
    EXPECT_EQ(launcher->actionParser(), nullptr);

    // The inherited start-up phases start nothing.
    launcher->initializeOpengl();
    launcher->initializeStartActions();
    launcher->initializeActions();
    launcher->startCoreInitialization();
    launcher->waitForCoreInitialization();
    EXPECT_FALSE(launcher->isCoreInitialized());
    EXPECT_EQ(launcher->actionParser(), nullptr);

    // Asked through the base, as the launcher is while it is being taken apart.
    Launcher* const base = launcher.get();
    int moments = 0;
    CallLog::setObserver([base, &moments](const std::string& entry) {
        ++moments;
        EXPECT_FALSE(base->isCoreInitialized()) << entry;
        EXPECT_EQ(base->actionParser(), nullptr) << entry;
    });
    launcher.reset();
    CallLog::setObserver({});
    EXPECT_EQ(moments, 4);
}

TEST_F(CLILauncherTest, WorkerNotificationsWithAnyPointerChangeNothing) {
    CLILauncher launcher;
    CallLog::clear();
    int worker = 0;
    launcher.workerIsBusy(&worker);
    launcher.workerIsIdle(&worker);
    launcher.workerIsBusy(nullptr);
    launcher.workerIsIdle(nullptr);
    launcher.workerIsIdle(&launcher);
    std::thread other([&launcher, &worker] {
        launcher.workerIsBusy(&worker);
        launcher.workerIsIdle(&worker);
    });
    other.join();
    EXPECT_TRUE(CallLog::entries().empty());
    EXPECT_FALSE(launcher.isCoreInitialized());
    EXPECT_EQ(CLILauncher::instance(), &launcher);
}

TEST_F(CLILauncherTest, CommandLineArgumentsAreThoseOfTheLiveApplication) {
    const CLILauncher launcher;
    const QStringList arguments = CLILauncher::instance()->commandLineArguments();
    EXPECT_EQ(arguments, QCoreApplication::arguments());
    ASSERT_FALSE(arguments.isEmpty());
    EXPECT_EQ(QFileInfo(arguments.front()).fileName(), "launcher_tests");
}

namespace {

struct SlotRow {
    const char* name;
    long slot;
    std::function<long()> slotOf;
};

// Names the row in test listings instead of dumping its bytes.
void PrintTo(const SlotRow& row, std::ostream* out) {
    *out << row.name;
}

class CLILauncherSlotTest : public testing::TestWithParam<SlotRow> {};

TEST_P(CLILauncherSlotTest, OperationSitsInTheSlotItHasInLauncher) {
    if (!EditorService::Testing::virtualSlotsAreReadable())
        GTEST_SKIP() << "virtual slots are not readable with this ABI";
    EXPECT_EQ(GetParam().slotOf(), GetParam().slot);
}

template <class Member> std::function<long()> slotOf(Member member) {
    return [member] { return virtualSlot(member); };
}

// Slots 0 and 1 hold the destructor.
INSTANTIATE_TEST_SUITE_P(
    Operations, CLILauncherSlotTest,
    testing::Values(
        SlotRow{"initializeOpengl", 2, slotOf(&CLILauncher::initializeOpengl)},
        SlotRow{"initializeStartActions", 3, slotOf(&CLILauncher::initializeStartActions)},
        SlotRow{"initializeActions", 4, slotOf(&CLILauncher::initializeActions)},
        SlotRow{"startCoreInitialization", 5, slotOf(&CLILauncher::startCoreInitialization)},
        SlotRow{"waitForCoreInitialization", 6, slotOf(&CLILauncher::waitForCoreInitialization)},
        SlotRow{"isCoreInitialized", 7, slotOf(&CLILauncher::isCoreInitialized)},
        SlotRow{"actionParser", 8, slotOf(&CLILauncher::actionParser)},
        SlotRow{"commandLineArguments", 9, slotOf(&CLILauncher::commandLineArguments)},
        SlotRow{"workerIsBusy", 10, slotOf(&CLILauncher::workerIsBusy)},
        SlotRow{"workerIsIdle", 11, slotOf(&CLILauncher::workerIsIdle)}),
    [](const testing::TestParamInfo<SlotRow>& info) { return info.param.name; });

// The launcher as a host builds it: a console program of its own, with real arguments.
class CLILauncherProcessTest : public CLILauncherTest {
protected:
    QStringList run(const QString& program, const QStringList& arguments) {
        QProcess process;
        process.setWorkingDirectory(workingDirectory.path());
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("REELSMITH_PROBE_SETTINGS", userDirectory.path());
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForFinished(120000));
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
        return QString::fromUtf8(process.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    }
};

} // namespace

TEST_F(CLILauncherProcessTest, CommandLineArgumentsAreTheProcessArgumentsUnchanged) {
    const QString program = LAUNCHER_PROBE;
    EXPECT_EQ(run(program, {"script", "--jobs=2", "two words", ""}),
              (QStringList{"version=1.0.0", "organization=Velmor", "application=ReelSmith",
                           "argument=" + program, "argument=script", "argument=--jobs=2",
                           "argument=two words", "argument="}));
}

TEST_F(CLILauncherProcessTest, TheCustomizationFileBesideTheExecutableIsRead) {
    QTemporaryDir executableDirectory;
    ASSERT_TRUE(executableDirectory.isValid());
    const QString program = QDir(executableDirectory.path()).absoluteFilePath("launcher_probe");
    ASSERT_TRUE(QFile::copy(LAUNCHER_PROBE, program));
    ASSERT_TRUE(QFile::setPermissions(program, QFile::permissions(LAUNCHER_PROBE)));
    writeFile(QDir(executableDirectory.path()).absoluteFilePath(customizationFile),
              "[Customization]\nProductVersion=4.2.0.9\nProductName=Beside\n");
    writeCustomization("[Customization]\nProductName=Working\n");
    const auto output = run(program, {});
    EXPECT_EQ(output.mid(0, 3),
              (QStringList{"version=4.2.0", "organization=Velmor", "application=Beside"}));
}
