#include "platform/export/PresetProvider.h"

#include "platform/foundation/CallLog.h"
#include "platform/model/Video.h"

#include <QFile>
#include <algorithm>
#include <map>
#include <stdexcept>

using Velmor::Testing::CallLog;

// The preset file is compiled into the library; a static library must register it by hand.
static void initPresetResource() {
    Q_INIT_RESOURCE(presets);
}

namespace Export {
namespace {

const char* const presetFile = ":/export/presets.json";

struct Tag {
    std::string defaultPreset;
    std::vector<Preset> presets;
};

std::map<std::string, Tag> readPresetFile() {
    initPresetResource();
    QFile file(QString::fromLatin1(presetFile));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error(std::string("Can not open the preset file ") + presetFile);
    const QByteArray contents = file.readAll();
    try {
        const auto document = nlohmann::json::parse(contents.begin(), contents.end());
        std::map<std::string, Tag> tags;
        for (const auto& [name, value] : document.at("tags").items()) {
            Tag tag;
            tag.defaultPreset = value.at("default").get<std::string>();
            for (const auto& preset : value.at("presets"))
                tag.presets.push_back(Preset::fromJson(preset));
            tags.emplace(name, std::move(tag));
        }
        return tags;
    } catch (const std::exception& error) {
        throw std::runtime_error(std::string("Broken preset file: ") + error.what());
    }
}

int evenSide(int side) {
    return side - side % 2;
}

} // namespace

class PresetProvider::Private {
public:
    std::map<std::string, Tag> tags;
    std::string tag;
    std::string selected;

    std::vector<Preset>* presets() {
        const auto found = tags.find(tag);
        return found == tags.end() ? nullptr : &found->second.presets;
    }

    const std::vector<Preset>* presets() const {
        const auto found = tags.find(tag);
        return found == tags.end() ? nullptr : &found->second.presets;
    }

    Preset* find(const std::string& id) {
        auto* list = presets();
        if (!list)
            return nullptr;
        const auto found = std::find_if(list->begin(), list->end(),
                                        [&id](const Preset& preset) { return preset.id() == id; });
        return found == list->end() ? nullptr : &*found;
    }

    const Preset* find(const std::string& id) const { return const_cast<Private*>(this)->find(id); }

    void selectDefault() {
        const auto found = tags.find(tag);
        selected = found == tags.end() ? std::string() : found->second.defaultPreset;
    }
};

PresetProvider::PresetProvider(QObject* parent)
    : QObject(parent)
    , d(std::make_unique<Private>()) {
    CallLog::record("PresetProvider::PresetProvider()");
}

PresetProvider::~PresetProvider() {
    CallLog::record("PresetProvider::~PresetProvider()");
}

void PresetProvider::load() {
    CallLog::record("PresetProvider::load()");
    d->tags = readPresetFile();
    if (!d->find(d->selected))
        d->selectDefault();
}

void PresetProvider::selectTag(const std::string& tag) {
    CallLog::record("PresetProvider::selectTag(" + tag + ")");
    d->tag = tag;
    d->selectDefault();
}

void PresetProvider::selectPreset(const std::string& id) {
    CallLog::record("PresetProvider::selectPreset(" + id + ")");
    if (d->find(id))
        d->selected = id;
}

Preset PresetProvider::preset() const {
    CallLog::record("PresetProvider::preset()");
    const Preset* selected = d->find(d->selected);
    return selected ? *selected : Preset();
}

std::vector<std::string> PresetProvider::availablePresets() const {
    CallLog::record("PresetProvider::availablePresets()");
    std::vector<std::string> ids;
    if (const auto* list = d->presets()) {
        for (const Preset& preset : *list)
            ids.push_back(preset.id());
    }
    return ids;
}

bool PresetProvider::updatePreset(const Preset& preset) {
    CallLog::record("PresetProvider::updatePreset(" + preset.id() + ")");
    Preset* stored = d->find(preset.id());
    if (!stored)
        return false;
    *stored = preset;
    return true;
}

void PresetProvider::updateResolutionPresetIfNeeded(const Media::Video* video) {
    if (!video) {
        CallLog::record("PresetProvider::updateResolutionPresetIfNeeded(null)");
        return;
    }
    CallLog::record("PresetProvider::updateResolutionPresetIfNeeded("
                    + std::to_string(video->frameWidth) + "x" + std::to_string(video->frameHeight)
                    + ")");
    Preset* selected = d->find(d->selected);
    if (!selected || (selected->width() != 0 && selected->height() != 0))
        return;
    selected->setWidth(evenSide(video->frameWidth));
    selected->setHeight(evenSide(video->frameHeight));
}

} // namespace Export
