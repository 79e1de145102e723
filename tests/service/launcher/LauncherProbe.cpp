#include "service/launcher/CLILauncher.h"

#include <QCoreApplication>
#include <QSettings>
#include <QTextStream>
#include <exception>

// Prints the identity the launcher gave the process, then its command-line arguments, one a
// line. The settings stores go to the directory named by REELSMITH_PROBE_SETTINGS.
int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope,
                       qEnvironmentVariable("REELSMITH_PROBE_SETTINGS"));
    QTextStream out(stdout);
    try {
        const CLILauncher launcher;
        out << "version=" << QCoreApplication::applicationVersion() << '\n'
            << "organization=" << QCoreApplication::organizationName() << '\n'
            << "application=" << QCoreApplication::applicationName() << '\n';
        for (const auto& argument : CLILauncher::instance()->commandLineArguments())
            out << "argument=" << argument << '\n';
        return 0;
    } catch (const std::exception& error) {
        QTextStream(stderr) << error.what() << '\n';
        return 1;
    }
}
