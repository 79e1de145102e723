#pragma once

#include "platform/preset/BitrateMode.h"
#include "platform/proc/SettingsResizer.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

// One export preset, as a value: copies are independent, and a change reaches an export only
// when the changed copy is given back to its provider.
//
// The operations that the export code drives (the selector, the setters and
// hasFixedResolution) are recorded in Velmor::Testing::CallLog as "Preset::<operation>(<value>)";
// id and the other plain readers are not.
class Preset {
public:
    Preset();
    explicit Preset(std::string id);
    Preset(const Preset& other);
    Preset(Preset&& other);
    Preset& operator=(const Preset& other);
    Preset& operator=(Preset&& other) noexcept;
    ~Preset();

    bool operator==(const Preset& other) const;
    bool operator!=(const Preset& other) const { return !(*this == other); }

    std::string id() const;

    // Selects one of the preset's video codecs; false, and nothing changed, for another name.
    bool selectVideoCodec(const std::string& codec);
    // False, and nothing changed, for a number outside the six modes.
    bool setResizeFillMode(Velmor::Proc::SettingsResizer::CustomModes mode);
    // True when the preset stands for one frame size and its width and height are not changed.
    bool hasFixedResolution() const;
    // 0 stands for the project's own size. False, and nothing changed, for a fixed resolution,
    // a negative value or one beyond 32 bits.
    bool setWidth(long long width);
    bool setHeight(long long height);
    bool setVideoBitrateMode(Export::BitrateMode mode);
    // False, and nothing changed, for a value below 1.
    bool setVideoBitrateBps(long long bitrate);
    bool setAudioBitrateBps(long long bitrate);

    std::string container() const;
    std::vector<std::string> videoCodecs() const;
    std::string videoCodec() const;
    std::string audioCodec() const;
    Velmor::Proc::SettingsResizer::CustomModes resizeFillMode() const;
    int width() const;
    int height() const;
    Export::BitrateMode videoBitrateMode() const;
    long long videoBitrateBps() const;
    long long audioBitrateBps() const;

    // The preset file's form of a preset:
    // {"id", "container", "videoCodecs": [...], "audioCodec", "resizeFillMode": "Fit",
    //  "fixedResolution", "width", "height", "videoBitrateMode": "Auto"|"Quality"|"Bps",
    //  "videoBitrateBps", "audioBitrateBps"}, the resize mode named as Velmor::Proc::IResize
    // names it. The first video codec is the selected one. fromJson throws
    // std::invalid_argument for a value it cannot take and nlohmann::json's exceptions for a
    // missing key or a value of the wrong kind.
    static Preset fromJson(const nlohmann::json& value);
    // All settings, in the form of fromJson with "videoCodec" for the selected codec added.
    nlohmann::json toJson() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};
