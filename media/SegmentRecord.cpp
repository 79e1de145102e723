#include "media/SegmentRecord.h"

#include "platform/foundation/OutputFile.h"
#include "platform/foundation/WriteError.h"

#include <QFile>
#include <cerrno>
#include <unistd.h>

namespace EditorService {
namespace {

using Json = nlohmann::json;

void writeAll(int descriptor, const std::string& path, const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = ::write(descriptor, text.data() + done, text.size() - done);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            throw Velmor::WriteError(path, errno);
        done += static_cast<std::size_t>(written);
    }
}

} // namespace

Json SegmentRecord::toJson() const {
    return Json{
        {"index", audio ? Json("audio") : Json(index)},
        {"silent", silent},
        {"count", count},
        {"first_frame", firstFrame},
        {"frames", frames},
        {"start_us", startUs},
        {"header", header},
        {"preset", preset},
        {"range", range},
        {"input", {{"path", input}, {"size", inputSize}, {"modified_ms", inputModifiedMs}}}};
}

SegmentRecord SegmentRecord::fromJson(const Json& value) {
    SegmentRecord record;
    const Json& index = value.at("index");
    record.audio = index.is_string() && index.get<std::string>() == "audio";
    record.index = record.audio ? 0 : index.get<int>();
    record.silent = value.value("silent", false);
    record.count = value.at("count").get<int>();
    record.firstFrame = value.at("first_frame").get<std::int64_t>();
    record.frames = value.at("frames").get<std::int64_t>();
    record.startUs = value.at("start_us").get<std::int64_t>();
    record.header = value.at("header").get<std::string>();
    record.preset = value.at("preset");
    record.range = value.at("range");
    const Json& input = value.at("input");
    record.input = input.at("path").get<std::string>();
    record.inputSize = input.at("size").get<std::int64_t>();
    record.inputModifiedMs = input.at("modified_ms").get<std::int64_t>();
    return record;
}

std::optional<SegmentRecord> SegmentRecord::read(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    try {
        return fromJson(Json::parse(file.readAll().toStdString()));
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

void SegmentRecord::write(const QString& path) const {
    const std::string name = path.toStdString();
    Velmor::OutputFile file(name, Velmor::OutputFile::Existing::Replace);
    writeAll(file.descriptor(), name, toJson().dump(2) + "\n");
    file.commit();
}

bool SegmentRecord::agreesWith(const SegmentRecord& other) const {
    return count == other.count && preset == other.preset && range == other.range
           && (audio != other.audio || header == other.header);
}

bool SegmentRecord::sameInputAs(const SegmentRecord& other) const {
    return input == other.input && inputSize == other.inputSize
           && inputModifiedMs == other.inputModifiedMs;
}

} // namespace EditorService
