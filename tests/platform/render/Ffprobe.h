#pragma once

#include <QProcess>
#include <QStringList>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>

namespace EditorService::Testing {

// What ffprobe, a reader independent of ours, reads of a file: its JSON for `what` (by default
// the streams with their packets counted).
inline nlohmann::json ffprobe(const std::string& path,
                              const QStringList& what = {"-show_streams", "-count_packets"}) {
    QProcess process;
    process.start("ffprobe", QStringList{"-v", "error"} + what
                                 + QStringList{"-of", "json", QString::fromStdString(path)});
    EXPECT_TRUE(process.waitForFinished(60000));
    return nlohmann::json::parse(process.readAllStandardOutput().toStdString());
}

} // namespace EditorService::Testing
