#include "CommandLine.h"
#include "RunCommand.h"
#include "ViewCommand.h"
#include "process/LogRecords.h"
#include "process/Platform.h"
#include "process/StandardStreams.h"

#include <QtWidgets/QApplication>

#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
// The interpreter keeps memory until the very end; a leak report at exit would drown everything else.
extern "C" Q_DECL_EXPORT const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "detect_leaks=0";
}
#endif

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments += QString::fromLocal8Bit(argv[i]);
    const CommandLine line = parseCommandLine(arguments);
    if (line.call == CommandLine::Call::Wrong) {
        writeAll(STDERR_FILENO, QStringLiteral("vantrel: %1\n").arg(line.text).toUtf8());
        return 2;
    }
    if (line.call == CommandLine::Call::Text) {
        writeAll(STDOUT_FILENO, line.text.toUtf8());
        return 0;
    }

    preparePlatform();
    LogRecords::writeToStandardError();
    // The arguments are the program's own, not the toolkit's.
    int ownArguments = 1;
    QApplication application(ownArguments, argv);
    QApplication::setApplicationName(QStringLiteral("Vantrel"));
    QApplication::setDesktopFileName(QStringLiteral("vantrel"));
    QApplication::setApplicationVersion(QStringLiteral(VANTREL_VERSION));
    // Dialogs come and go while the main window is hidden: the application ends only when told to.
    QApplication::setQuitOnLastWindowClosed(false);
    return line.call == CommandLine::Call::Run ? runScripts(line.run) : openViewer(line.view);
}
