#include "service/contexts/ContentContext.h"

#include "platform/applogic/PackCollectionController.h"
#include "platform/content/AnimationContentProvider.h"
#include "platform/content/EffectContentProvider.h"
#include "platform/content/ImportContentProvider.h"
#include "platform/content/OverlayContentProvider.h"
#include "platform/content/PanAndZoomContentProvider.h"
#include "platform/content/ThemeContentProvider.h"
#include "platform/content/TransitionContentProvider.h"
#include "platform/editorlogic/AsyncLoadPolicy.h"
#include "platform/editorlogic/CollectionController.h"
#include "platform/editorlogic/PersistentItemController.h"
#include "platform/editorlogic/RedirectionTableHolder.h"
#include "platform/editorlogic/ResourceController.h"
#include "platform/model/CollectionID.h"
#include "platform/package/ContentProvider.h"
#include "platform/package/PackageHelper.h"

#include <QSet>

namespace EditorService {
namespace {

// The packages load while the fields after this one are built.
std::unique_ptr<Package::ContentProvider>
startedLoading(std::unique_ptr<Package::ContentProvider> provider) {
    provider->startLoading();
    return provider;
}

} // namespace

class ContentContext::Private {
public:
    Private();

    Resource::Controller resourceController;
    EditorCollection::Controller collectionController;
    std::unique_ptr<EditorCollection::PackCollectionController> packCollectionController;
    std::unique_ptr<Package::ContentProvider> packageContentProvider;
    EditorCollection::PersistentItemController persistentItemController;
    Import::ContentProvider importContentProvider;
    Overlay::ContentProvider overlayContentProvider;
    Effect::ContentProvider effectContentProvider;
    Transition::ContentProvider transitionContentProvider;
    std::unique_ptr<Animation::ContentProvider> animationContentProvider;
    PanAndZoom::ContentProvider panAndZoomContentProvider;
    Theme::ContentProvider themeContentProvider;
};

ContentContext::Private::Private()
    : resourceController(std::unique_ptr<Resource::IRedirectionTableHolder>(
        std::make_unique<Resource::RedirectionTableHolder>()))
    , collectionController(QSet<QString>{EditorCollection::CollectionID::PACKS})
    , packCollectionController(std::make_unique<EditorCollection::PackCollectionController>(
          Package::createPackageHelper()))
    , packageContentProvider(startedLoading(std::make_unique<Package::ContentProvider>(
          std::shared_ptr<Velmor::App::ILookAndFeelManager>())))
    , persistentItemController(static_cast<EditorCollection::AsyncLoadPolicy>(0))
    , animationContentProvider(std::make_unique<Animation::ContentProvider>()) {}

ContentContext::ContentContext() {
    d = std::make_unique<Private>();
    d->packageContentProvider->waitForFinishLoading();
}

ContentContext::~ContentContext() = default;

} // namespace EditorService
