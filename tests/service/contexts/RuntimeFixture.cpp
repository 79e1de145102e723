#include "tests/service/contexts/RuntimeFixture.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "platform/ogl/OglManager.h"
#include "platform/package/PackageDirectory.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <algorithm>
#include <memory>

namespace EditorService::Testing {
namespace {

using Velmor::Testing::CallLog;

const std::vector<std::pair<std::string, std::string>>& constructionMarks() {
    static const std::vector<std::pair<std::string, std::string>> marks{
        {"CoreManager::Initialize", "Engine"},
        {"Connection::Synchronizer::Synchronizer", "Media"},
        {"Resource::RedirectionTableHolder::RedirectionTableHolder", "Content"},
        {"Composition::Controller::Controller", "Render"}};
    return marks;
}

const std::vector<std::pair<std::string, std::string>>& destructionMarks() {
    static const std::vector<std::pair<std::string, std::string>> marks{
        {"CoreManager::Uninitialize", "Engine"},
        {"Connection::Synchronizer::~Synchronizer", "Media"},
        {"Resource::RedirectionTableHolder::~RedirectionTableHolder", "Content"},
        {"Composition::Controller::~Controller", "Render"}};
    return marks;
}

std::vector<std::string> named(const std::vector<std::pair<std::string, std::string>>& marks) {
    std::vector<std::string> names;
    for (const auto& entry : CallLog::entries()) {
        for (const auto& [mark, name] : marks) {
            if (entry == mark)
                names.push_back(name);
        }
    }
    return names;
}

} // namespace

void RuntimeFixture::SetUp() {
    ASSERT_TRUE(root.isValid());
    QDir(root.path()).mkpath("packages");
    QDir(root.path()).mkpath("data");
    dataHome = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QDir(root.path()).filePath("data").toLocal8Bit());
    QDir().mkpath(fontsDirectory());
    Package::setPackageDirectory(packageDirectory());
    Velmor::Testing::Probe::clear();
    Velmor::Ogl::OglManager::GetInstance().Deinitialize();
    CallLog::clear();
}

void RuntimeFixture::TearDown() {
    Velmor::Testing::Probe::clear();
    Package::setPackageDirectory(QString());
    qputenv("XDG_DATA_HOME", dataHome);
}

QString RuntimeFixture::packageDirectory() const {
    return QDir(root.path()).filePath("packages");
}

QString RuntimeFixture::fontsDirectory() const {
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation))
        .filePath("fonts");
}

void RuntimeFixture::addPackage(const QString& name) const {
    QFile manifest(QDir(packageDirectory()).filePath(name + ".json"));
    ASSERT_TRUE(manifest.open(QIODevice::WriteOnly));
    manifest.write(QStringLiteral("{\"name\": \"%1\"}").arg(name).toUtf8());
}

std::vector<std::string> RuntimeFixture::only(const std::vector<std::string>& wanted) {
    std::vector<std::string> found;
    for (const auto& entry : CallLog::entries()) {
        if (std::find(wanted.begin(), wanted.end(), entry) != wanted.end())
            found.push_back(entry);
    }
    return found;
}

std::vector<std::string> RuntimeFixture::startingWith(const std::string& prefix) {
    std::vector<std::string> found;
    for (const auto& entry : CallLog::entries()) {
        if (entry.rfind(prefix, 0) == 0)
            found.push_back(entry);
    }
    return found;
}

int RuntimeFixture::count(const std::string& entry) {
    const auto entries = CallLog::entries();
    return static_cast<int>(std::count(entries.begin(), entries.end(), entry));
}

std::vector<std::string> RuntimeFixture::contextsBuilt() {
    return named(constructionMarks());
}

std::vector<std::string> RuntimeFixture::contextsDestroyed() {
    return named(destructionMarks());
}

bool RuntimeFixture::spinsEventLoop(const std::function<void()>& action) {
    auto ran = std::make_shared<bool>(false);
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [ran] { *ran = true; }, Qt::QueuedConnection);
    action();
    const bool spun = *ran;
    QCoreApplication::sendPostedEvents();
    return spun;
}

} // namespace EditorService::Testing
