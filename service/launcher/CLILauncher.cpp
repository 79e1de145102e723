#include "service/launcher/CLILauncher.h"

#include "platform/appcore/CustomizationManager.h"
#include "platform/apputil/Customization.h"
#include "platform/foundation/AppLocations.h"
#include "platform/foundation/VersionToString.h"
#include "platform/model/Translator.h"
#include "platform/settings/Settings.h"
#include "platform/settings/SettingsManager.h"
#include "service/launcher/LookAndFeelManagerStub.h"

#include <QCoreApplication>

namespace {

constexpr char customizationFileName[] = "ReelSmithCustom.ini";
// The settings stores live under the vendor's word whatever the customized organisation is.
constexpr char settingsOrganization[] = "Velmor";

std::shared_ptr<Velmor::App::ISettingsManager> makeSettings(const QString& settingsId) {
    return std::make_shared<Velmor::App::SettingsManager>(settingsId,
                                                          QString::fromUtf8(settingsOrganization));
}

} // namespace

// The only strong references to these objects: whoever else was given one holds it weakly,
// so all of them die with the launcher, in reverse order of these fields.
class CLILauncher::Private {
public:
    std::shared_ptr<Velmor::App::ICustomizationManager> customizationManager;
    std::shared_ptr<Velmor::App::ILookAndFeelManager> lookAndFeelManager;
    std::shared_ptr<Velmor::App::ISettingsManager> applicationSettings;
    std::shared_ptr<Velmor::App::ISettingsManager> productSettings;
};

CLILauncher::CLILauncher()
    : d(std::make_unique<Private>()) {
    d->customizationManager =
        std::make_shared<Velmor::App::CustomizationManager>(Velmor::ioPath(customizationFileName));

    QCoreApplication::setApplicationVersion(Velmor::Util::VersionToString(
        d->customizationManager->GetProductVersion(),
        Velmor::Util::VersionToStringDetail::MajorMinorPatch, QStringLiteral(".")));

    d->lookAndFeelManager = std::make_shared<LookAndFeelManagerStub>();
    Customization::init(d->lookAndFeelManager);

    QCoreApplication::setOrganizationName(
        QString::fromStdString(d->customizationManager->GetOrganizationName()));
    // The product name, not the application name, names a headless process.
    QCoreApplication::setApplicationName(
        QString::fromStdString(d->customizationManager->GetProductName()));

    d->applicationSettings =
        makeSettings(QString::fromStdString(d->customizationManager->GetApplicationSettingsId()));

    const std::string productSettingsId = d->customizationManager->GetProductSettingsId();
    d->productSettings = productSettingsId.empty()
                             ? d->applicationSettings
                             : makeSettings(QString::fromStdString(productSettingsId));

    SettingsContext context;
    context.customizationManager = d->customizationManager;
    context.productSettings = d->productSettings;
    context.applicationSettings = d->applicationSettings;
    context.settingsLocation = Velmor::Core::AppLocations::GetLocations().GetSettingsLocation();
    Settings::init(context);

    Translator::setCurrentLocale(Customization::currentLocale());

    registerInstance(this);
}

CLILauncher::~CLILauncher() {
    unregisterInstance(this);
}

bool CLILauncher::isCoreInitialized() const {
    return false;
}

Velmor::App::ActionParser* CLILauncher::actionParser() const {
    return nullptr;
}

QStringList CLILauncher::commandLineArguments() const {
    return QCoreApplication::arguments();
}

void CLILauncher::workerIsBusy(void*) {}

void CLILauncher::workerIsIdle(void*) {}

CLILauncher* CLILauncher::instance() {
    return dynamic_cast<CLILauncher*>(Launcher::instance());
}
