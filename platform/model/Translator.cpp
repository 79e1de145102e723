#include "platform/model/Translator.h"

#include "platform/foundation/CallLog.h"

#include <QLocale>
#include <mutex>
#include <stdexcept>

namespace {

struct State {
    std::mutex mutex;
    QString locale;
};

State& state() {
    static State instance;
    return instance;
}

} // namespace

void Translator::setCurrentLocale(const QString& locale) {
    Velmor::Testing::CallLog::record(
        QStringLiteral("Translator::setCurrentLocale(%1)").arg(locale).toStdString());
    // Qt falls back to the C locale for any name it does not know.
    const QLocale qtLocale(locale);
    if (qtLocale == QLocale::c() && locale != QLatin1String("C"))
        throw std::invalid_argument(
            QStringLiteral("Unknown locale: \"%1\"").arg(locale).toStdString());
    std::lock_guard<std::mutex> lock(state().mutex);
    state().locale = locale;
    QLocale::setDefault(qtLocale);
}

QString Translator::currentLocale() {
    std::lock_guard<std::mutex> lock(state().mutex);
    return state().locale;
}

namespace Velmor::Testing {

void resetTranslator() {
    std::lock_guard<std::mutex> lock(state().mutex);
    state().locale.clear();
    QLocale::setDefault(QLocale::system());
}

} // namespace Velmor::Testing
