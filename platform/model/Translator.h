#pragma once

#include <QString>

// The locale the editor's texts are shown in.
class Translator {
public:
    // Makes the locale ("en_US") the current one and the process's default QLocale. Throws
    // std::invalid_argument, quoting the name, when Qt knows no such locale.
    static void setCurrentLocale(const QString& locale);

    // The locale last set; empty before the first.
    static QString currentLocale();
};

namespace Velmor::Testing {

// Puts the translator back as a fresh process has it: no locale set, and Qt's default locale
// the system's. The locale is process-wide, so tests that share a process reset it.
void resetTranslator();

} // namespace Velmor::Testing
