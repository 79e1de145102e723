#pragma once

#include <QByteArray>
#include <QString>
#include <nlohmann/json.hpp>
#include <vector>

namespace EditorService::Testing {

// What ffprobe and ffmpeg say of a media file of the zoo: the reference the host's probes,
// thumbnails and exports are checked against, independent of the project's own media code.
class ZooReference {
public:
    explicit ZooReference(const QString& path);

    // ffprobe's -show_format -show_streams, as JSON; null when ffprobe fails.
    const nlohmann::json& probe() const;
    // Where the file's timeline begins, in seconds of its timestamps: MP4, MOV and Matroska count
    // from 0, the other containers from their first timestamp.
    double origin() const;
    // The display times of the best video stream's frames as ffmpeg decodes them from the start,
    // in milliseconds of the timeline, in display order.
    const std::vector<double>& frameTimes() const;
    // The index of the frame on screen at `ms`: the last one at or before it, else the first.
    int frameOnScreenAt(double ms) const;
    // The index of the first frame at or after `ms`; -1 for none.
    int firstFrameFrom(double ms) const;
    // Frame `index` as ffmpeg decodes it, turned upright as ffmpeg does, and scaled (square
    // pixels) to width x height then padded into padWidth x padHeight, as packed RGB.
    QByteArray pixels(int index, int width, int height, int padWidth = 0, int padHeight = 0) const;

private:
    QString path;
    nlohmann::json format;
    std::vector<double> times;
};

// Frame `index` of a file the host wrote, as packed RGB.
QByteArray decodedFrame(const QString& path, int index);

} // namespace EditorService::Testing
