#include "service/presets/PresetContext.h"

#include "platform/export/PresetProvider.h"
#include "platform/model/Video.h"
#include "platform/preset/Preset.h"
#include "service/api/Error.h"
#include "service/requests/ResizeFillMode.h"

#include <QMap>
#include <QStringList>
#include <stdexcept>
#include <string>

namespace EditorService {
namespace {

const QMap<PresetContext::Option, QCommandLineOption>& optionTable() {
    static const QMap<PresetContext::Option, QCommandLineOption> table = [] {
        QMap<PresetContext::Option, QCommandLineOption> rows;
        rows.insert(
            PresetContext::PresetName,
            QCommandLineOption(
                QStringLiteral("preset"),
                QStringLiteral("Preset name. Available:\n2160p\n1440p\n1080p\n720p\n480p\n360p"),
                QStringLiteral("preset"), PresetContext::defaultPreset()));
        rows.insert(
            PresetContext::VideoCodec,
            QCommandLineOption(QStringLiteral("preset-video-codec"),
                               QStringLiteral("Select preset's video codec, i.e. CODEC_ID_H264"),
                               QStringLiteral("preset-video-codec"), QString()));
        rows.insert(
            PresetContext::ResizeFillMode,
            QCommandLineOption(QStringLiteral("preset-resize-fill-mode"),
                               QStringLiteral("Override preset's resize fill mode. Available:\n%1")
                                   .arg(resizeFillModeList().join(QLatin1Char('\n'))),
                               QStringLiteral("preset-resize-mode"), QString()));
        rows.insert(
            PresetContext::FrameSize,
            QCommandLineOption(
                QStringLiteral("preset-frame-size"),
                QStringLiteral("Override preset's frame size.\nWith the original, the "
                               "size from the project is used.\nOriginal size, width "
                               "and height must be even."),
                QStringLiteral("%1|<width>:<height>").arg(PresetFrameSize::originalSizeString()),
                QString()));
        rows.insert(
            PresetContext::VideoBitrate,
            QCommandLineOption(
                QStringLiteral("preset-video-bitrate"),
                QStringLiteral("Override preset's video bitrate, i.e. 1200000 bits per sec."),
                QStringLiteral("Bitrate in bps"), QString()));
        rows.insert(
            PresetContext::AudioBitrate,
            QCommandLineOption(
                QStringLiteral("preset-audio-bitrate"),
                QStringLiteral("Override preset's audio bitrate, i.e. 320000 bits per sec."),
                QStringLiteral("Bitrate in bps"), QString()));
        return rows;
    }();
    return table;
}

// Gives the working copy back to the provider on every way out of makeProvider, the
// overrides made so far included. It cannot be disarmed, and a failure inside it ends the
// process rather than hiding the failure that is unwinding.
class PresetUpdate {
public:
    PresetUpdate(const Preset& preset, std::shared_ptr<Export::PresetProvider> provider,
                 const Media::Video* video)
        : preset(preset)
        , provider(std::move(provider))
        , video(video) {}
    PresetUpdate(const PresetUpdate&) = delete;
    PresetUpdate& operator=(const PresetUpdate&) = delete;

    ~PresetUpdate() noexcept {
        provider->updatePreset(preset);
        if (video)
            provider->updateResolutionPresetIfNeeded(video);
    }

private:
    const Preset& preset;
    std::shared_ptr<Export::PresetProvider> provider;
    const Media::Video* video;
};

QString joined(const std::vector<std::string>& ids) {
    QStringList list;
    for (const auto& id : ids)
        list.append(QString::fromStdString(id));
    return list.join(QLatin1Char('\n'));
}

} // namespace

PresetContext::PresetContext()
    : preset(defaultPreset()) {}

QString PresetContext::defaultPreset() {
    return QStringLiteral("mp4");
}

QCommandLineOption PresetContext::option(Option which) {
    const auto row = optionTable().constFind(which);
    if (row == optionTable().constEnd())
        throw std::out_of_range("No preset option with the number " + std::to_string(which));
    return row.value();
}

QList<QCommandLineOption> PresetContext::options() {
    return optionTable().values();
}

std::shared_ptr<Export::PresetProvider>
PresetContext::makeProvider(const Media::Video* video) const {
    auto provider = std::make_shared<Export::PresetProvider>(nullptr);
    provider->load();
    provider->selectTag("format_clive");
    const std::string presetId = preset.toStdString();
    provider->selectPreset(presetId);
    if (provider->preset().id() != presetId) {
        // One call fills both places, so that a %N in the name is not filled in turn.
        throw Error(QStringLiteral("Unknown preset: %1\nAvailable presets:\n%2")
                        .arg(preset, joined(provider->availablePresets()))
                        .toStdString());
    }

    Preset working = provider->preset();
    const PresetUpdate update(working, provider, video);

    if (videoCodec && !working.selectVideoCodec(videoCodec->toStdString())) {
        throw Error(
            QStringLiteral("Unexpected video codec for preset: %1").arg(*videoCodec).toStdString());
    }
    if (resizeFillMode)
        working.setResizeFillMode(*resizeFillMode);
    if (video && frameSize && !working.hasFixedResolution()) {
        const PresetFrameSize size = frameSize->isOriginal()
                                         ? PresetFrameSize(video->frameWidth, video->frameHeight)
                                         : *frameSize;
        if (!size.isEven())
            throw Error(QStringLiteral("Frame size must be even.").toStdString());
        working.setWidth(static_cast<long long>(size.width));
        working.setHeight(static_cast<long long>(size.height));
    }
    if (videoBitrate) {
        working.setVideoBitrateMode(Export::BitrateMode::Bps);
        working.setVideoBitrateBps(*videoBitrate);
    }
    if (audioBitrate)
        working.setAudioBitrateBps(*audioBitrate);
    return provider;
}

} // namespace EditorService
