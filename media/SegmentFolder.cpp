#include "media/SegmentFolder.h"

#include <QDir>

namespace EditorService {
namespace {

QString partName(int index) {
    return QStringLiteral("segment-%1").arg(index, 4, 10, QLatin1Char('0'));
}

} // namespace

SegmentFolder::SegmentFolder(QString folder)
    : folder(std::move(folder)) {}

const QString& SegmentFolder::path() const {
    return folder;
}

QString SegmentFolder::file(const QString& name) const {
    return QDir(folder).filePath(name);
}

QString SegmentFolder::video(int index) const {
    return file(partName(index) + QStringLiteral(".mp4"));
}

QString SegmentFolder::videoRecord(int index) const {
    return file(partName(index) + QStringLiteral(".json"));
}

QString SegmentFolder::audio() const {
    return file(QStringLiteral("segment-audio.mp4"));
}

QString SegmentFolder::audioRecord() const {
    return file(QStringLiteral("segment-audio.json"));
}

} // namespace EditorService
