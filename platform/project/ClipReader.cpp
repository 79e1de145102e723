#include "platform/project/ClipReader.h"

#include "platform/effects/TransitionCatalog.h"

namespace Project {
namespace {

const std::vector<std::string>& fitNames() {
    static const std::vector<std::string> names{"Fit",      "Fill",      "Stretch",
                                                "FitWidth", "FitHeight", "Center"};
    return names;
}

std::vector<std::string> transitionNames() {
    std::vector<std::string> names;
    for (const auto& kind : Effects::transitionKinds())
        names.push_back(kind.name);
    return names;
}

// A media file's name, resolved against the project's folder.
void readSource(const JsonNode& node, const QDir& folder, QString& source, QString& file) {
    const std::string name = node.text();
    if (name.empty())
        node.expected("the name of a media file");
    source = QString::fromStdString(name);
    file = QDir::cleanPath(folder.absoluteFilePath(source));
}

double volume(const JsonNode& node) {
    return node.number(-100, 40, "a volume in decibels from -100 to 40");
}

Effects::NormalisedRect readRect(const JsonNode& node) {
    const auto items = node.items();
    if (items.size() != 4)
        node.expected("[x, y, width, height]");
    const std::string what = "a number from 0 to 1";
    Effects::NormalisedRect rect{items[0].number(0, 1, what), items[1].number(0, 1, what),
                                 items[2].number(0, 1, what), items[3].number(0, 1, what)};
    if (rect.width <= 0 || rect.height <= 0)
        node.expected("a rectangle of some width and height");
    constexpr double slack = 1e-9;
    if (rect.x + rect.width > 1 + slack || rect.y + rect.height > 1 + slack)
        node.fail(node.value().dump() + " leaves the picture; x + w and y + h are at most 1");
    return rect;
}

// The keys of exactly one of two kinds of clip.
bool isFirstKind(const JsonNode& node, const std::string& first, const std::string& second,
                 const std::string& clip) {
    const bool hasFirst = node.has(first);
    const bool hasSecond = node.has(second);
    if (hasFirst == hasSecond) {
        node.fail(hasFirst ? clip + " has \"" + first + "\" or \"" + second + "\", not both"
                           : clip + " needs \"" + first + "\" or \"" + second + "\"");
    }
    return hasFirst;
}

void readMediaClip(const JsonNode& node, const QDir& folder, VideoClip& clip) {
    node.allowOnly(
        {"source", "in_ms", "out_ms", "duration_ms", "fit", "volume_db", "pan_zoom", "transition"});
    readSource(node.at("source"), folder, clip.source, clip.file);
    if (const auto in = node.find("in_ms"))
        clip.inMs = in->milliseconds();
    if (const auto out = node.find("out_ms"))
        clip.outMs = out->milliseconds(1);
    if (const auto fit = node.find("fit"))
        clip.fit =
            static_cast<Velmor::Proc::SettingsResizer::CustomModes>(fit->choice(fitNames(), "fit"));
    if (const auto level = node.find("volume_db"))
        clip.volumeDb = level->isNull() ? std::nullopt : std::optional<double>(volume(*level));
    if (const auto panZoom = node.find("pan_zoom"))
        clip.panZoom = readPanZoom(*panZoom);
    if (clip.panZoom && node.has("fit"))
        node.at("fit").fail(
            "a clip with pan_zoom fills the frame with its rectangle; leave fit out");
}

} // namespace

VideoClip readVideoClip(const JsonNode& node, const QDir& folder) {
    VideoClip clip;
    clip.path = node.place();
    if (isFirstKind(node, "source", "color", "a clip")) {
        readMediaClip(node, folder, clip);
    } else {
        node.allowOnly({"color", "duration_ms", "transition"});
        clip.kind = VideoClip::Kind::Colour;
        clip.colour = node.at("color").colour();
    }
    if (const auto duration = node.find("duration_ms"))
        clip.durationMs = duration->milliseconds(1);
    if (const auto transition = node.find("transition"); transition && !transition->isNull())
        clip.transition = readTransition(*transition);
    return clip;
}

TransitionSpec readTransition(const JsonNode& node) {
    node.allowOnly({"type", "duration_ms"});
    TransitionSpec transition;
    transition.path = node.place();
    transition.type = transitionNames()[node.at("type").choice(transitionNames(), "transition")];
    if (const auto duration = node.find("duration_ms"))
        transition.durationMs = duration->milliseconds(1);
    return transition;
}

Effects::PanZoomPath readPanZoom(const JsonNode& node) {
    node.allowOnly({"from", "to", "easing"});
    Effects::PanZoomPath path;
    if (const auto from = node.find("from"))
        path.from = readRect(*from);
    path.to = path.from;
    if (const auto to = node.find("to"))
        path.to = readRect(*to);
    if (const auto easing = node.find("easing"))
        path.easing =
            static_cast<Effects::Easing>(easing->choice(Effects::easingNames(), "easing"));
    return path;
}

TitleLook readTitleStyle(const JsonNode& node) {
    node.allowOnly(
        {"font", "size", "color", "position", "background", "fade_in_ms", "fade_out_ms"});
    TitleLook look;
    if (const auto font = node.find("font")) {
        look.style.font = font->text();
        if (look.style.font.empty())
            font->expected("a font family");
    }
    if (const auto size = node.find("size"))
        look.style.size =
            static_cast<int>(size->wholeNumber(1, 4096, "a whole number of pixels from 1 to 4096"));
    if (const auto colour = node.find("color"))
        look.style.colour = colour->colour();
    if (const auto position = node.find("position"))
        look.style.position =
            static_cast<Effects::Position>(position->choice(Effects::positionNames(), "position"));
    if (const auto background = node.find("background"); background && !background->isNull())
        look.style.background = background->colour();
    if (const auto fadeIn = node.find("fade_in_ms"))
        look.fadeInMs = fadeIn->milliseconds();
    if (const auto fadeOut = node.find("fade_out_ms"))
        look.fadeOutMs = fadeOut->milliseconds();
    return look;
}

OverlayClip readOverlayClip(const JsonNode& node, const QDir& folder) {
    OverlayClip clip;
    clip.path = node.place();
    if (isFirstKind(node, "text", "source", "an overlay")) {
        node.allowOnly({"text", "style", "start_ms", "duration_ms", "opacity"});
        clip.text = node.at("text").text();
        const TitleLook look = node.has("style") ? readTitleStyle(node.at("style")) : TitleLook{};
        clip.style = look.style;
        clip.fadeInMs = look.fadeInMs;
        clip.fadeOutMs = look.fadeOutMs;
    } else {
        node.allowOnly({"source", "start_ms", "duration_ms", "in_ms", "rect", "opacity",
                        "fade_in_ms", "fade_out_ms"});
        clip.kind = OverlayClip::Kind::Picture;
        readSource(node.at("source"), folder, clip.source, clip.file);
        if (const auto in = node.find("in_ms"))
            clip.inMs = in->milliseconds();
        if (const auto rect = node.find("rect"))
            clip.rect = readRect(*rect);
        if (const auto fadeIn = node.find("fade_in_ms"))
            clip.fadeInMs = fadeIn->milliseconds();
        if (const auto fadeOut = node.find("fade_out_ms"))
            clip.fadeOutMs = fadeOut->milliseconds();
    }
    if (const auto start = node.find("start_ms"))
        clip.startMs = start->milliseconds();
    if (const auto duration = node.find("duration_ms"))
        clip.durationMs = duration->milliseconds(1);
    if (const auto opacity = node.find("opacity"))
        clip.opacity = opacity->number(0, 1, "a number from 0 to 1");
    return clip;
}

AudioClip readAudioClip(const JsonNode& node, const QDir& folder) {
    node.allowOnly({"source", "start_ms", "in_ms", "out_ms", "volume_db", "fade_in_ms",
                    "fade_out_ms", "loop"});
    AudioClip clip;
    clip.path = node.place();
    readSource(node.at("source"), folder, clip.source, clip.file);
    if (const auto start = node.find("start_ms"))
        clip.startMs = start->milliseconds();
    if (const auto in = node.find("in_ms"))
        clip.inMs = in->milliseconds();
    if (const auto out = node.find("out_ms"))
        clip.outMs = out->milliseconds(1);
    if (const auto level = node.find("volume_db"))
        clip.volumeDb = volume(*level);
    if (const auto fadeIn = node.find("fade_in_ms"))
        clip.fadeInMs = fadeIn->milliseconds();
    if (const auto fadeOut = node.find("fade_out_ms"))
        clip.fadeOutMs = fadeOut->milliseconds();
    if (const auto loop = node.find("loop"))
        clip.loop = loop->boolean();
    return clip;
}

Duck readDuck(const JsonNode& node) {
    node.allowOnly({"amount_db", "threshold_db", "attack_ms", "release_ms"});
    Duck duck;
    if (const auto amount = node.find("amount_db"))
        duck.amountDb = amount->number(-100, 0, "a number of decibels from -100 to 0");
    if (const auto threshold = node.find("threshold_db"))
        duck.thresholdDb = threshold->number(-100, 0, "a number of decibels from -100 to 0");
    if (const auto attack = node.find("attack_ms"))
        duck.attackMs = attack->milliseconds();
    if (const auto release = node.find("release_ms"))
        duck.releaseMs = release->milliseconds();
    return duck;
}

} // namespace Project
