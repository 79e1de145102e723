#include "service/presets/PresetsHelp.h"

#include "platform/export/PresetProvider.h"
#include "platform/preset/Preset.h"
#include "service/presets/PresetContext.h"

#include <QStringList>
#include <algorithm>
#include <string>
#include <vector>

namespace EditorService {
namespace {

struct PresetRow {
    QString name;
    QString size;
    QString codecs;
};

PresetRow rowOf(const Preset& preset) {
    PresetRow row;
    row.name = QString::fromStdString(preset.id());
    if (row.name == PresetContext::defaultPreset())
        row.name += QStringLiteral(" (default)");
    // A preset without a size of its own takes the video's.
    row.size = preset.width() > 0 && preset.height() > 0
                   ? QStringLiteral("%1x%2").arg(preset.width()).arg(preset.height())
                   : QStringLiteral("the video's size");
    QStringList codecs;
    for (const std::string& codec : preset.videoCodecs())
        codecs.append(QString::fromStdString(codec));
    row.codecs = codecs.join(QLatin1Char(' '));
    return row;
}

// The default preset first, then the others in the provider's order.
std::vector<PresetRow> presetRows() {
    const auto provider = PresetContext().makeProvider(nullptr);
    std::vector<std::string> ids = provider->availablePresets();
    const std::string defaultId = PresetContext::defaultPreset().toStdString();
    std::stable_partition(ids.begin(), ids.end(),
                          [&defaultId](const std::string& id) { return id == defaultId; });
    std::vector<PresetRow> rows;
    for (const std::string& id : ids) {
        provider->selectPreset(id);
        rows.push_back(rowOf(provider->preset()));
    }
    return rows;
}

} // namespace

QString presetsHelp() {
    const std::vector<PresetRow> rows = presetRows();
    int nameWidth = 0;
    int sizeWidth = 0;
    for (const PresetRow& row : rows) {
        nameWidth = std::max(nameWidth, int(row.name.size()));
        sizeWidth = std::max(sizeWidth, int(row.size.size()));
    }
    QString text = QStringLiteral(
        "Presets (--preset), with their frame size and video codecs; a preset writes its first "
        "codec\nunless --preset-video-codec names another:\n");
    for (const PresetRow& row : rows) {
        text += QStringLiteral("  %1  %2  %3\n")
                    .arg(row.name, -nameWidth)
                    .arg(row.size, -sizeWidth)
                    .arg(row.codecs);
    }
    return text;
}

} // namespace EditorService
