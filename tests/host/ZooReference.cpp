#include "tests/host/ZooReference.h"

#include "tests/host/MediaTools.h"

#include <algorithm>

namespace EditorService::Testing {
namespace {

QByteArray framePixels(const QString& path, const QString& filter) {
    const ToolRun run = runTool(QStringLiteral("ffmpeg"),
                                {"-nostdin", "-v", "error", "-i", path, "-vf", filter, "-frames:v",
                                 "1", "-f", "rawvideo", "-pix_fmt", "rgb24", "-"});
    return run.exitCode == 0 ? run.output : QByteArray();
}

std::vector<double> decodedTimes(const QString& path, double origin) {
    const ToolRun run = runTool(QStringLiteral("ffprobe"),
                                {"-v", "error", "-select_streams", "V:0", "-show_entries",
                                 "frame=best_effort_timestamp_time", "-of", "csv=p=0", path});
    std::vector<double> times;
    for (const QByteArray& line : run.output.split('\n')) {
        bool number = false;
        // A frame with side data ends its line with a comma.
        const double seconds = line.split(',').first().trimmed().toDouble(&number);
        if (number)
            times.push_back((seconds - origin) * 1000);
    }
    std::sort(times.begin(), times.end());
    return times;
}

} // namespace

ZooReference::ZooReference(const QString& path)
    : path(path) {
    const ToolRun run = runTool(QStringLiteral("ffprobe"), {"-v", "error", "-show_format",
                                                            "-show_streams", "-of", "json", path});
    format = nlohmann::json::parse(run.output.toStdString(), nullptr, false);
    if (run.exitCode != 0 || format.is_discarded())
        format = nullptr;
    times = decodedTimes(path, origin());
}

const nlohmann::json& ZooReference::probe() const {
    return format;
}

double ZooReference::origin() const {
    if (!format.is_object())
        return 0;
    const std::string name = format.at("format").value("format_name", "");
    if (name.rfind("mov,", 0) == 0 || name.rfind("matroska", 0) == 0)
        return 0;
    return std::stod(format.at("format").value("start_time", "0"));
}

const std::vector<double>& ZooReference::frameTimes() const {
    return times;
}

int ZooReference::frameOnScreenAt(double ms) const {
    const auto after = std::upper_bound(times.begin(), times.end(), ms + 1e-6);
    return after == times.begin() ? 0 : static_cast<int>(after - times.begin()) - 1;
}

int ZooReference::firstFrameFrom(double ms) const {
    const auto from = std::lower_bound(times.begin(), times.end(), ms - 1e-6);
    return from == times.end() ? -1 : static_cast<int>(from - times.begin());
}

QByteArray ZooReference::pixels(int index, int width, int height, int padWidth,
                                int padHeight) const {
    QString filter =
        QStringLiteral("select=eq(n\\,%1),scale=%2:%3,setsar=1").arg(index).arg(width).arg(height);
    if (padWidth > 0)
        filter += QStringLiteral(",pad=%1:%2:(ow-iw)/2:(oh-ih)/2").arg(padWidth).arg(padHeight);
    return framePixels(path, filter);
}

QByteArray decodedFrame(const QString& path, int index) {
    return framePixels(path, QStringLiteral("select=eq(n\\,%1)").arg(index));
}

} // namespace EditorService::Testing
