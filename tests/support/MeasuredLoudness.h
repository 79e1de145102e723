#pragma once

#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <string>

namespace EditorService::Testing {

// ffmpeg's ebur128 (with true peaks) on a sound or media file: its integrated loudness in LUFS
// and its true peak in dBTP, from the summary it prints; 1000 for a figure it did not print.
struct Loudness {
    double integrated = 0;
    double truePeak = 0;
};

inline Loudness measuredLoudness(const std::string& path) {
    QProcess ffmpeg;
    ffmpeg.start("ffmpeg", {"-nostats", "-hide_banner", "-i", QString::fromStdString(path), "-af",
                            "ebur128=peak=true", "-f", "null", "-"});
    ffmpeg.waitForFinished(-1);
    const QString summary = QString::fromUtf8(ffmpeg.readAllStandardError());
    Loudness loudness;
    const auto integrated =
        QRegularExpression(R"(Integrated loudness:\s+I:\s+(-?[\d.]+) LUFS)").match(summary);
    const auto peak =
        QRegularExpression(R"(True peak:\s+Peak:\s+(-?[\d.inf]+) dBFS)").match(summary);
    loudness.integrated = integrated.hasMatch() ? integrated.captured(1).toDouble() : 1000;
    loudness.truePeak = peak.hasMatch() ? peak.captured(1).toDouble() : 1000;
    return loudness;
}

} // namespace EditorService::Testing
