#pragma once

#include "platform/preset/Preset.h"

#include <QObject>
#include <memory>
#include <string>
#include <vector>

namespace Media {
struct Video;
}

namespace Export {

// The export presets known to the editor, grouped under tags, with one preset selected.
//
// Presets come from the preset file built into the library (presets.json). Selecting a tag
// selects its default preset; selecting an identifier that the tag does not hold reports
// nothing and leaves the selection as it was. Every operation is recorded in
// Velmor::Testing::CallLog as "PresetProvider::<operation>(<argument>)".
class PresetProvider : public QObject {
    Q_OBJECT
public:
    explicit PresetProvider(QObject* parent = nullptr);
    ~PresetProvider() override;

    // Reads the preset file, dropping whatever was loaded or updated before; the tag and the
    // selection are kept where the new presets still hold them. Throws std::runtime_error when
    // the file cannot be read or parsed.
    void load();
    void selectTag(const std::string& tag);
    void selectPreset(const std::string& id);
    // A copy of the selected preset; a default Preset, with an empty identifier, when nothing
    // is selected.
    Preset preset() const;
    // The identifiers under the selected tag, in the file's order.
    std::vector<std::string> availablePresets() const;
    // Takes a changed preset back in place of the one with its identifier under the selected
    // tag; false, and nothing changed, when the tag holds no such preset.
    bool updatePreset(const Preset& preset);
    // A preset of free resolution that has no size of its own (width or height 0) takes the
    // size of the video, rounded down to even sides. Nothing happens for a null video.
    void updateResolutionPresetIfNeeded(const Media::Video* video);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Export
