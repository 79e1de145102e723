#include "service/contexts/EngineContext.h"

#include "platform/clientapi/FontsSetup.h"
#include "platform/engine/CoreManager.h"
#include "platform/engine/CoreManagerOptions.h"
#include "platform/engine/Utils.h"
#include "platform/foundation/AppLocations.h"
#include "platform/ogl/OglManager.h"

#include <QCommandLineParser>
#include <string>
#include <vector>

namespace EditorService {

EngineContext::EngineContext(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.addOptions(commandLineOptions());
    // The list holds the other contexts' options too: unknown here, and no error.
    parser.parse(arguments);
    const QStringList disabledPlugins = parser.values(QStringLiteral("disable-plugin"));

    auto& core = Velmor::Core::CoreManager::Instance();
    Velmor::Core::ModuleOptionTable moduleOptions;
    std::vector<std::string> pluginNames;
    for (const QString& plugin : disabledPlugins)
        pluginNames.push_back(plugin.toStdString());
    Velmor::Core::Utils::SetModuleOption(
        moduleOptions, Velmor::Core::CoreManagerOptions::MODULE_PLUGIN_LOADER,
        Velmor::Core::CoreManagerOptions::OPT_DISABLED_PLUGINS, pluginNames);
    core.Initialize(std::function<void()>(), moduleOptions,
                    boost::intrusive_ptr<Velmor::Proc::ICoreTracker>());
    core.WaitUntilInitialized();

    auto& ogl = Velmor::Ogl::OglManager::GetInstance();
    if (!ogl.IsInitialized())
        ogl.Initialize();

    Velmor::ClientAPI::FontsSetup(Velmor::Core::AppLocations::GetLocations().GetFontsLocation());
}

EngineContext::~EngineContext() noexcept {
    Velmor::Ogl::OglManager::GetInstance().Deinitialize();
    Velmor::Core::CoreManager::Instance().Uninitialize();
}

QList<QCommandLineOption> EngineContext::commandLineOptions() {
    return {QCommandLineOption(
        QStringLiteral("disable-plugin"),
        QStringLiteral("List of plugins to disable.\nPossible values:\nEffectsIPP\nEffects\n"
                       "EffectsFF\nEffectsOgl\nDecodersFF\nEncodersFF\nEncoderLossless\n"
                       "EncoderAMF\nEncoderNVENC\nDecoderNVDEC\nEncoderIM\nDecoderMF\nEncoderMF\n"
                       "DecoderRAW\n\nUsage:\n--disable-plugin=EffectsFF\n"
                       "--disable-plugin=EffectsOgl"),
        QStringLiteral("plugin name"))};
}

} // namespace EditorService
