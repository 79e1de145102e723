#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace EditorService::Testing {

// One finished run of a program of the ffmpeg package, which tests use to check the host's
// media work against; the host itself never runs them.
struct ToolRun {
    bool started = false;
    int exitCode = -1;
    QByteArray output;
    QByteArray errors;
};

ToolRun runTool(const QString& program, const QStringList& arguments);

// A picture file's pixels decoded by ffmpeg as packed 8-bit RGB, row after row; empty when
// ffmpeg can't read it.
QByteArray rgbPixels(const QString& picture);

// The peak signal-to-noise ratio in dB of two pictures of equal size, infinite when they are
// equal; negative when their sizes differ.
double psnr(const QByteArray& a, const QByteArray& b);

// Whether a line of stderr is one of glog's: the command log, the media libraries' own warnings
// and errors.
bool isLogLine(const QByteArray& line);

// stderr without glog's lines.
QList<QByteArray> errorLinesBesidesTheLog(const QByteArray& errors);

} // namespace EditorService::Testing
