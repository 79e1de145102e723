#include "platform/appcore/CustomizationManager.h"

#include <QCoreApplication>
#include <QTextStream>
#include <exception>

// Prints the customization read from the file named by the first argument, one value a line.
int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QTextStream out(stdout);
    try {
        const Velmor::App::CustomizationManager manager(
            Velmor::ioPath(QCoreApplication::arguments().value(1)));
        const auto version = manager.GetProductVersion();
        out << version.Major << '.' << version.Minor << '.' << version.Patch << '.' << version.Build
            << '\n'
            << QString::fromStdString(manager.GetProductName()) << '\n'
            << QString(manager.GetFilePath()) << '\n';
        return 0;
    } catch (const std::exception& error) {
        QTextStream(stderr) << error.what() << '\n';
        return 1;
    }
}
