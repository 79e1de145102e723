#pragma once

#include <QString>

namespace EditorService {

// Where the files of a split export stand in its folder: part K's video "segment-K.mp4" (K with
// four digits at least, so that they list in order) and its record "segment-K.json", the
// sound "segment-audio.mp4" and "segment-audio.json".
class SegmentFolder {
public:
    explicit SegmentFolder(QString folder);

    const QString& path() const;
    QString video(int index) const;
    QString videoRecord(int index) const;
    QString audio() const;
    QString audioRecord() const;

private:
    QString folder;

    QString file(const QString& name) const;
};

} // namespace EditorService
