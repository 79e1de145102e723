#include "media/SegmentCheck.h"

#include "media/SegmentFolder.h"
#include "service/api/Error.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <optional>

namespace EditorService {
namespace {

[[noreturn]] void fail(const QString& message) {
    throw Error(message.toStdString());
}

// The record of a part whose file stands beside it; none when either is missing.
std::optional<SegmentRecord> recordOf(const QString& file, const QString& record) {
    if (!QFileInfo::exists(file))
        return std::nullopt;
    return SegmentRecord::read(record);
}

// How many parts the export has, as any video part's record says.
int partCount(const QString& folder) {
    const QDir place(folder);
    const QStringList records =
        place.entryList({QStringLiteral("segment-[0-9]*.json")}, QDir::Files, QDir::Name);
    for (const QString& name : records) {
        if (const auto record = SegmentRecord::read(place.filePath(name)))
            return record->count;
    }
    fail(QStringLiteral("No segments in %1").arg(folder));
}

void requireSameInput(const SegmentRecord& record, const SegmentRecord& first) {
    if (!record.sameInputAs(first))
        fail(QStringLiteral("The input changed since segment 0 was made"));
}

void requireInputUnchanged(const SegmentRecord& first) {
    const QFileInfo input(QString::fromStdString(first.input));
    if (!input.exists())
        return;
    if (input.size() != first.inputSize
        || input.lastModified().toMSecsSinceEpoch() != first.inputModifiedMs)
        fail(QStringLiteral("The input changed since segment 0 was made"));
}

void requireFollows(const SegmentRecord& record, const SegmentRecord& before) {
    const std::int64_t expected = before.firstFrame + before.frames;
    if (record.firstFrame != expected) {
        fail(QStringLiteral("Segment %1 does not follow segment %2 (frame %3 expected, %4 found)")
                 .arg(record.index)
                 .arg(before.index)
                 .arg(expected)
                 .arg(record.firstFrame));
    }
}

SegmentRecord checkedPart(const SegmentFolder& folder, int index, int count) {
    const auto record = recordOf(folder.video(index), folder.videoRecord(index));
    if (!record || record->audio || record->index != index) {
        fail(QStringLiteral("Segment %1 of %2 is missing in %3")
                 .arg(index)
                 .arg(count)
                 .arg(folder.path()));
    }
    return *record;
}

// Whether the export has sound.
bool checkAudio(const SegmentFolder& folder, const SegmentRecord& first) {
    auto record = SegmentRecord::read(folder.audioRecord());
    if (record && !record->silent && !QFileInfo::exists(folder.audio()))
        record.reset();
    if (!record || !record->audio)
        fail(QStringLiteral("The audio of %1 is missing").arg(folder.path()));
    if (!record->agreesWith(first)) {
        fail(QStringLiteral("The audio of %1 was made with other settings than segment 0")
                 .arg(folder.path()));
    }
    requireSameInput(*record, first);
    return !record->silent;
}

} // namespace

SegmentSet checkSegments(const QString& path) {
    const SegmentFolder folder(path);
    const int count = partCount(path);
    SegmentSet set;
    for (int index = 0; index < count; ++index) {
        const SegmentRecord record = checkedPart(folder, index, count);
        if (index > 0) {
            const SegmentRecord& first = set.records.front();
            if (!record.agreesWith(first))
                fail(QStringLiteral("Segment %1 was made with other settings than segment 0")
                         .arg(index));
            requireSameInput(record, first);
            requireFollows(record, set.records.back());
        }
        set.records.push_back(record);
        set.videos.push_back(folder.video(index));
    }
    const bool sound = checkAudio(folder, set.records.front());
    requireInputUnchanged(set.records.front());
    if (sound)
        set.audio = folder.audio();
    return set;
}

} // namespace EditorService
