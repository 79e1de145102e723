// Runs every test of a test executable again and again, each run in a process of its own, for
// the given number of minutes, and reports at the end how often each test ran and failed.
//
//     soak_runner <test executable> <minutes>
//
// A failed run's output is kept in the report, so a rare failure can be read afterwards. The
// exit status is 0 when no run failed, 1 otherwise, 2 for bad arguments.

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMap>
#include <QProcess>
#include <QStringList>
#include <cstdio>

namespace {

struct Tally {
    int runs = 0;
    int failures = 0;
    qint64 milliseconds = 0;
    QByteArray firstFailure;
};

QStringList testNames(const QString& executable) {
    QProcess lister;
    lister.start(executable, {QStringLiteral("--gtest_list_tests")});
    lister.waitForFinished(60000);
    QStringList names;
    QString suite;
    for (const QByteArray& rawLine : lister.readAllStandardOutput().split('\n')) {
        const QString line = QString::fromUtf8(rawLine);
        if (line.trimmed().isEmpty())
            continue;
        const QString name = line.trimmed().section(QLatin1Char(' '), 0, 0);
        if (!line.startsWith(QLatin1Char(' '))) {
            suite = name;
            continue;
        }
        names.append(suite + name);
    }
    return names;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    bool isNumber = false;
    const double minutes = arguments.value(2).toDouble(&isNumber);
    if (arguments.size() != 3 || !isNumber || minutes <= 0) {
        std::fprintf(stderr, "usage: soak_runner <test executable> <minutes>\n");
        return 2;
    }
    const QString executable = arguments.at(1);
    const QStringList names = testNames(executable);
    if (names.isEmpty()) {
        std::fprintf(stderr, "%s lists no tests\n", qPrintable(executable));
        return 2;
    }

    QMap<QString, Tally> tallies;
    QElapsedTimer clock;
    clock.start();
    const qint64 deadline = qint64(minutes * 60000);
    int rounds = 0;
    while (clock.elapsed() < deadline) {
        ++rounds;
        for (const QString& name : names) {
            if (clock.elapsed() >= deadline)
                break;
            QProcess test;
            test.setProcessChannelMode(QProcess::MergedChannels);
            QElapsedTimer testClock;
            testClock.start();
            test.start(executable, {QStringLiteral("--gtest_filter=%1").arg(name)});
            const bool finished = test.waitForFinished(600000);
            if (!finished)
                test.kill();
            test.waitForFinished();
            Tally& tally = tallies[name];
            ++tally.runs;
            tally.milliseconds += testClock.elapsed();
            if (finished && test.exitStatus() == QProcess::NormalExit && test.exitCode() == 0)
                continue;
            ++tally.failures;
            if (tally.firstFailure.isEmpty())
                tally.firstFailure = test.readAll().right(4000);
            std::fprintf(stderr, "FAILED %s (run %d)\n", qPrintable(name), tally.runs);
        }
    }

    int runs = 0;
    int failures = 0;
    std::printf("\nSoak of %s: %d rounds in %.1f minutes\n", qPrintable(executable), rounds,
                double(clock.elapsed()) / 60000.0);
    for (auto tally = tallies.cbegin(); tally != tallies.cend(); ++tally) {
        runs += tally->runs;
        failures += tally->failures;
        std::printf("  %-100s runs %4d  failures %3d  mean %6lld ms\n", qPrintable(tally.key()),
                    tally->runs, tally->failures,
                    static_cast<long long>(tally->milliseconds / std::max(1, tally->runs)));
    }
    std::printf("Total: %d runs, %d failures\n", runs, failures);
    for (auto tally = tallies.cbegin(); tally != tallies.cend(); ++tally) {
        if (tally->failures == 0)
            continue;
        std::printf("\nFirst failure of %s:\n%s\n", qPrintable(tally.key()),
                    tally->firstFailure.constData());
    }
    return failures == 0 ? 0 : 1;
}
