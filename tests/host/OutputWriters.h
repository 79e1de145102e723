#pragma once

#include <QString>
#include <QStringList>
#include <string>
#include <vector>

namespace EditorService::Testing {

// A command of the host that writes a file, as a row of the tests of how outputs are written.
struct OutputWriter {
    std::string name;
    // The output's file name.
    QString file;
    // Writes `output` within a second or so; variants 0 and 1 write different bytes, each the
    // same every time.
    QStringList (*quick)(const QString& output, int variant);
    // Writes `output` for long enough to be stopped half-way.
    QStringList (*slow)(const QString& output);
};

// Export and thumbnail.
std::vector<OutputWriter> outputWriters();

// The names in a folder that are temporaries of outputs.
QStringList temporariesIn(const QString& folder);

} // namespace EditorService::Testing
