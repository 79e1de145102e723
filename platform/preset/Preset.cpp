#include "platform/preset/Preset.h"

#include "platform/foundation/CallLog.h"
#include "platform/proc/IResize.h"

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>

using Velmor::Proc::SettingsResizer;
using Velmor::Testing::CallLog;

namespace {

const std::array<std::string, 3>& bitrateModeNames() {
    static const std::array<std::string, 3> names = {"Auto", "Quality", "Bps"};
    return names;
}

std::string bitrateModeName(Export::BitrateMode mode) {
    const int index = static_cast<int>(mode);
    if (index < 0 || index >= static_cast<int>(bitrateModeNames().size()))
        return std::to_string(index);
    return bitrateModeNames()[static_cast<std::size_t>(index)];
}

Export::BitrateMode bitrateModeFromName(const std::string& name) {
    const auto& names = bitrateModeNames();
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        throw std::invalid_argument("No bitrate mode named \"" + name + "\"");
    return static_cast<Export::BitrateMode>(found - names.begin());
}

bool isResizeMode(SettingsResizer::CustomModes mode) {
    return mode >= SettingsResizer::Fit && mode <= SettingsResizer::Center;
}

std::string resizeModeText(SettingsResizer::CustomModes mode) {
    if (!isResizeMode(mode))
        return std::to_string(static_cast<int>(mode));
    return Velmor::Proc::IResize::CustomModes2String(mode);
}

bool fitsFrameSide(long long value) {
    return value >= 0 && value <= std::numeric_limits<int>::max();
}

} // namespace

class Preset::Private {
public:
    std::string id;
    std::string container = "mp4";
    std::vector<std::string> videoCodecs;
    std::string videoCodec;
    std::string audioCodec;
    SettingsResizer::CustomModes resizeFillMode = SettingsResizer::Fit;
    bool fixedResolution = false;
    int width = 0;
    int height = 0;
    Export::BitrateMode videoBitrateMode = Export::BitrateMode::Auto;
    long long videoBitrateBps = 0;
    long long audioBitrateBps = 0;

    bool operator==(const Private& other) const {
        return id == other.id && container == other.container && videoCodecs == other.videoCodecs
               && videoCodec == other.videoCodec && audioCodec == other.audioCodec
               && resizeFillMode == other.resizeFillMode && fixedResolution == other.fixedResolution
               && width == other.width && height == other.height
               && videoBitrateMode == other.videoBitrateMode
               && videoBitrateBps == other.videoBitrateBps
               && audioBitrateBps == other.audioBitrateBps;
    }
};

Preset::Preset()
    : d(std::make_unique<Private>()) {}

Preset::Preset(std::string id)
    : d(std::make_unique<Private>()) {
    d->id = std::move(id);
}

Preset::Preset(const Preset& other)
    : d(std::make_unique<Private>(*other.d)) {}

Preset::Preset(Preset&& other)
    : d(std::make_unique<Private>(std::move(*other.d))) {}

Preset& Preset::operator=(const Preset& other) {
    *d = *other.d;
    return *this;
}

Preset& Preset::operator=(Preset&& other) noexcept {
    *d = std::move(*other.d);
    return *this;
}

Preset::~Preset() = default;

bool Preset::operator==(const Preset& other) const {
    return *d == *other.d;
}

std::string Preset::id() const {
    return d->id;
}

bool Preset::selectVideoCodec(const std::string& codec) {
    CallLog::record("Preset::selectVideoCodec(" + codec + ")");
    if (std::find(d->videoCodecs.begin(), d->videoCodecs.end(), codec) == d->videoCodecs.end())
        return false;
    d->videoCodec = codec;
    return true;
}

bool Preset::setResizeFillMode(SettingsResizer::CustomModes mode) {
    CallLog::record("Preset::setResizeFillMode(" + resizeModeText(mode) + ")");
    if (!isResizeMode(mode))
        return false;
    d->resizeFillMode = mode;
    return true;
}

bool Preset::hasFixedResolution() const {
    CallLog::record("Preset::hasFixedResolution()");
    return d->fixedResolution;
}

bool Preset::setWidth(long long width) {
    CallLog::record("Preset::setWidth(" + std::to_string(width) + ")");
    if (d->fixedResolution || !fitsFrameSide(width))
        return false;
    d->width = static_cast<int>(width);
    return true;
}

bool Preset::setHeight(long long height) {
    CallLog::record("Preset::setHeight(" + std::to_string(height) + ")");
    if (d->fixedResolution || !fitsFrameSide(height))
        return false;
    d->height = static_cast<int>(height);
    return true;
}

bool Preset::setVideoBitrateMode(Export::BitrateMode mode) {
    CallLog::record("Preset::setVideoBitrateMode(" + bitrateModeName(mode) + ")");
    d->videoBitrateMode = mode;
    return true;
}

bool Preset::setVideoBitrateBps(long long bitrate) {
    CallLog::record("Preset::setVideoBitrateBps(" + std::to_string(bitrate) + ")");
    if (bitrate < 1)
        return false;
    d->videoBitrateBps = bitrate;
    return true;
}

bool Preset::setAudioBitrateBps(long long bitrate) {
    CallLog::record("Preset::setAudioBitrateBps(" + std::to_string(bitrate) + ")");
    if (bitrate < 1)
        return false;
    d->audioBitrateBps = bitrate;
    return true;
}

std::string Preset::container() const {
    return d->container;
}

std::vector<std::string> Preset::videoCodecs() const {
    return d->videoCodecs;
}

std::string Preset::videoCodec() const {
    return d->videoCodec;
}

std::string Preset::audioCodec() const {
    return d->audioCodec;
}

SettingsResizer::CustomModes Preset::resizeFillMode() const {
    return d->resizeFillMode;
}

int Preset::width() const {
    return d->width;
}

int Preset::height() const {
    return d->height;
}

Export::BitrateMode Preset::videoBitrateMode() const {
    return d->videoBitrateMode;
}

long long Preset::videoBitrateBps() const {
    return d->videoBitrateBps;
}

long long Preset::audioBitrateBps() const {
    return d->audioBitrateBps;
}

Preset Preset::fromJson(const nlohmann::json& value) {
    Preset preset(value.at("id").get<std::string>());
    Private& settings = *preset.d;
    settings.container = value.at("container").get<std::string>();
    settings.videoCodecs = value.at("videoCodecs").get<std::vector<std::string>>();
    if (settings.videoCodecs.empty())
        throw std::invalid_argument("Preset \"" + settings.id + "\" has no video codec");
    settings.videoCodec = settings.videoCodecs.front();
    settings.audioCodec = value.at("audioCodec").get<std::string>();
    settings.resizeFillMode =
        Velmor::Proc::IResize::String2CustomModes(value.at("resizeFillMode").get<std::string>());
    settings.fixedResolution = value.at("fixedResolution").get<bool>();
    settings.width = value.at("width").get<int>();
    settings.height = value.at("height").get<int>();
    settings.videoBitrateMode =
        bitrateModeFromName(value.at("videoBitrateMode").get<std::string>());
    settings.videoBitrateBps = value.at("videoBitrateBps").get<long long>();
    settings.audioBitrateBps = value.at("audioBitrateBps").get<long long>();
    return preset;
}

nlohmann::json Preset::toJson() const {
    return nlohmann::json{{"id", d->id},
                          {"container", d->container},
                          {"videoCodecs", d->videoCodecs},
                          {"videoCodec", d->videoCodec},
                          {"audioCodec", d->audioCodec},
                          {"resizeFillMode", resizeModeText(d->resizeFillMode)},
                          {"fixedResolution", d->fixedResolution},
                          {"width", d->width},
                          {"height", d->height},
                          {"videoBitrateMode", bitrateModeName(d->videoBitrateMode)},
                          {"videoBitrateBps", d->videoBitrateBps},
                          {"audioBitrateBps", d->audioBitrateBps}};
}
