#include "tests/host/OutputWriters.h"

#include "tests/support/MediaFixtures.h"

#include <QDir>

namespace EditorService::Testing {
namespace {

QString fixture(const std::string& name) {
    return QString::fromStdString(mediaFixture(name));
}

QString frameSize(int variant) {
    return variant == 0 ? QStringLiteral("--preset-frame-size=320:240")
                        : QStringLiteral("--preset-frame-size=160:120");
}

} // namespace

std::vector<OutputWriter> outputWriters() {
    return {
        {"Export", "out.mp4",
         [](const QString& output, int variant) {
             return QStringList{"export", fixture("h264_aac.mp4"), "--output=" + output,
                                "--range=0:1000", frameSize(variant)};
         },
         [](const QString& output) {
             return QStringList{"export", fixture("long.mp4"), "--output=" + output};
         }},
        {"Thumbnail", "t.png",
         [](const QString& output, int variant) {
             return QStringList{"thumbnail", fixture("h264_aac.mp4"), "--output=" + output,
                                "--at=1000", frameSize(variant)};
         },
         // A picture of 25 million bytes takes a while to encode as PNG.
         [](const QString& output) {
             return QStringList{"thumbnail", fixture("h264_aac.mp4"), "--output=" + output,
                                "--preset-frame-size=3840:2160"};
         }},
    };
}

QStringList temporariesIn(const QString& folder) {
    return QDir(folder).entryList({"*.reelsmith-partial-*"}, QDir::Files | QDir::System,
                                  QDir::Name);
}

} // namespace EditorService::Testing
