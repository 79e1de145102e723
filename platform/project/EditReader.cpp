#include "platform/project/EditReader.h"

#include "platform/project/ClipReader.h"
#include "platform/project/JsonNode.h"
#include "platform/project/ProjectError.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <filesystem>

namespace Project {
namespace {

constexpr const char* versionKey = "reelsmith_project";

[[noreturn]] void failProject(const std::string& project, const std::string& reason) {
    throw ProjectError(project + ": " + reason);
}

// nlohmann names the byte of a failure; people look for a line and a column.
[[noreturn]] void failParse(const std::string& project, const std::string& bytes, std::size_t byte,
                            std::string reason) {
    const std::size_t end = std::min<std::size_t>(std::max<std::size_t>(byte, 1), bytes.size() + 1);
    std::size_t line = 1;
    std::size_t lineStart = 0;
    for (std::size_t index = 0; index + 1 < end; ++index) {
        if (bytes[index] == '\n') {
            ++line;
            lineStart = index + 1;
        }
    }
    const std::size_t column = end > lineStart ? end - lineStart : 1;
    // What nlohmann echoes of the input may be no UTF-8; messages are.
    reason = QString::fromUtf8(reason.data(), static_cast<int>(reason.size())).toStdString();
    failProject(project, "invalid JSON at line " + std::to_string(line) + ", column "
                             + std::to_string(column) + ": " + reason);
}

// The text after nlohmann's "[json.exception...] " and "parse error at ...: " prefixes.
std::string reasonOf(const nlohmann::json::exception& error) {
    std::string reason = error.what();
    const std::size_t tag = reason.find("] ");
    if (tag != std::string::npos)
        reason = reason.substr(tag + 2);
    if (reason.rfind("parse error", 0) == 0) {
        const std::size_t colon = reason.find(": ");
        if (colon != std::string::npos)
            reason = reason.substr(colon + 2);
    }
    return reason;
}

// A number too large for a double is refused after it was read, without a place: its text,
// quoted in the reason, is looked for.
std::size_t placeOfNumber(const std::string& bytes, const std::string& reason) {
    const std::size_t open = reason.find('\'');
    const std::size_t close = reason.rfind('\'');
    if (open == std::string::npos || close <= open)
        return 1;
    const std::size_t found = bytes.find(reason.substr(open + 1, close - open - 1));
    return found == std::string::npos ? 1 : found + 1;
}

void checkVersion(const nlohmann::json& document, const std::string& project) {
    if (!document.is_object() || !document.contains(versionKey))
        failProject(project,
                    "not a project: expected a JSON object whose \"reelsmith_project\" is 1");
    const JsonNode version(document[versionKey], versionKey, project);
    if (!version.value().is_number_integer())
        version.expected("1");
    const auto number = version.value().get<std::int64_t>();
    if (number != 1)
        version.fail("version " + std::to_string(number)
                     + " is not known; this build reads version 1");
}

std::optional<Velmor::AV::Rational> parseRate(const std::string& text) {
    static const QRegularExpression form(
        QStringLiteral("\\A([1-9][0-9]{0,5})(?:/([1-9][0-9]{0,5}))?\\z"));
    const auto match = form.match(QString::fromStdString(text));
    if (!match.hasMatch())
        return std::nullopt;
    const int den = match.captured(2).isEmpty() ? 1 : match.captured(2).toInt();
    return Velmor::AV::Rational{match.captured(1).toInt(), den};
}

Output readOutput(const JsonNode& node) {
    node.allowOnly({"width", "height", "frame_rate", "sample_rate", "background"});
    Output output;
    const std::string size = "a whole number of pixels from 2 to 16384";
    if (const auto width = node.find("width"))
        output.width = static_cast<int>(width->wholeNumber(2, 16384, size));
    if (const auto height = node.find("height"))
        output.height = static_cast<int>(height->wholeNumber(2, 16384, size));
    if (output.width.has_value() != output.height.has_value())
        node.fail("give \"width\" and \"height\" together");
    if (const auto rate = node.find("frame_rate")) {
        const auto parsed = rate->value().is_string() ? parseRate(rate->text()) : std::nullopt;
        if (!parsed || parsed->toDouble() > 1000)
            rate->expected("a frame rate such as \"25/1\" or \"30000/1001\"");
        output.frameRate = parsed;
    }
    if (const auto rate = node.find("sample_rate"))
        output.sampleRate = static_cast<int>(rate->wholeNumber(
            8000, 192000, "a whole number of samples a second from 8000 to 192000"));
    if (const auto background = node.find("background"))
        output.background = background->colour();
    return output;
}

void readVideoTrack(const JsonNode& track, const QDir& folder, Edit& edit) {
    track.allowOnly({"type", "clips"});
    if (!edit.videoTrackPath.empty())
        track.fail("a second video track; a project has exactly one");
    edit.videoTrackPath = track.place();
    const JsonNode clips = track.at("clips");
    for (const JsonNode& clip : clips.items())
        edit.video.push_back(readVideoClip(clip, folder));
    if (edit.video.empty())
        clips.fail("the video track has no clips");
}

void readTrack(const JsonNode& track, const QDir& folder, Edit& edit) {
    static const std::vector<std::string> types{"video", "overlay", "audio"};
    const std::size_t type = track.at("type").choice(types, "track type");
    if (type == 0)
        return readVideoTrack(track, folder, edit);
    if (type == 1) {
        track.allowOnly({"type", "clips"});
        OverlayTrack overlays{track.place(), {}};
        for (const JsonNode& clip : track.at("clips").items())
            overlays.clips.push_back(readOverlayClip(clip, folder));
        edit.overlays.push_back(std::move(overlays));
        return;
    }
    track.allowOnly({"type", "clips", "duck"});
    AudioTrack audio{track.place(), {}, std::nullopt};
    for (const JsonNode& clip : track.at("clips").items())
        audio.clips.push_back(readAudioClip(clip, folder));
    if (const auto duck = track.find("duck"))
        audio.duck = readDuck(*duck);
    edit.audio.push_back(std::move(audio));
}

// The theme the document names, its defaults filled in.
QString fillTheme(nlohmann::json& document, const std::string& project, const IThemes& themes) {
    const JsonNode root(document, "", project);
    const auto name = root.find("theme");
    if (!name)
        return {};
    const auto theme = themes.theme(name->text());
    if (!theme)
        name->unknown("theme", name->text(), themes.themeNames());
    applyTheme(document, *theme);
    return QString::fromStdString(theme->name);
}

Edit readDocument(nlohmann::json document, const QString& path, const IThemes& themes) {
    const std::string project = path.toStdString();
    checkVersion(document, project);
    Edit edit;
    edit.projectFile = path;
    edit.theme = fillTheme(document, project, themes);
    const JsonNode root(document, "", project);
    root.allowOnly({versionKey, "output", "theme", "tracks", "loudness_lufs"});
    if (const auto output = root.find("output"))
        edit.output = readOutput(*output);
    if (const auto loudness = root.find("loudness_lufs"))
        edit.loudnessLufs = loudness->number(-70, -5, "a loudness from -70 to -5 LUFS");
    const QDir folder = QFileInfo(path).absoluteDir();
    const auto tracks = root.find("tracks");
    if (tracks) {
        for (const JsonNode& track : tracks->items())
            readTrack(track, folder, edit);
    }
    if (edit.videoTrackPath.empty())
        failProject(project, "tracks: no video track; a project has exactly one");
    return edit;
}

} // namespace

bool looksLikeProject(const QString& path) {
    // Only a regular file: reading a pipe or a device to look would wait for it, or take what
    // the media reader needs.
    std::error_code error;
    if (!std::filesystem::is_regular_file(path.toStdString(), error))
        return false;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(4096);
    int at = head.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    while (at < head.size() && QByteArrayLiteral(" \t\r\n").contains(head[at]))
        ++at;
    return at < head.size() && head[at] == '{';
}

Edit readEdit(const QString& path, const IThemes& themes) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        failProject(path.toStdString(),
                    "Can not read the project file: " + file.errorString().toStdString());
    const QByteArray bytes = file.readAll();
    return readEditFrom(bytes.toStdString(), path, themes);
}

Edit readEditFrom(const std::string& bytes, const QString& path, const IThemes& themes) {
    nlohmann::json document;
    try {
        document = nlohmann::json::parse(bytes);
    } catch (const nlohmann::json::parse_error& error) {
        failParse(path.toStdString(), bytes, error.byte, reasonOf(error));
    } catch (const nlohmann::json::exception& error) {
        const std::string reason = reasonOf(error);
        failParse(path.toStdString(), bytes, placeOfNumber(bytes, reason), reason);
    }
    return readDocument(std::move(document), path, themes);
}

} // namespace Project
