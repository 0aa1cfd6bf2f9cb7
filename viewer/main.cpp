#include "CommandLine.h"
#include "RunCommand.h"
#include "ViewCommand.h"
#include "process/LogRecords.h"
#include "process/Platform.h"
#include "process/StandardStreams.h"
#include "process/ThreadSignals.h"

#include <QtWidgets/QApplication>

#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
// The interpreter keeps memory until the process ends; a leak report would bury every other message.
extern "C" Q_DECL_EXPORT const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "detect_leaks=0";
}
#endif

namespace {

const char* const noDisplayText = R"(there is no display: log in with ssh -X, or put xvfb-run before the command
)";

bool needsDisplay(const CommandLine& line)
{
    return line.command == CommandLine::Command::View || line.run.show;
}

} // namespace

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments += QString::fromLocal8Bit(argv[i]);
    const CommandLine line = parseCommandLine(arguments);
    if (line.command == CommandLine::Command::Invalid) {
        writeAll(STDERR_FILENO, QStringLiteral("vantrel: %1\n").arg(line.text).toUtf8());
        return 2;
    }
    if (line.command == CommandLine::Command::Text) {
        writeAll(STDOUT_FILENO, line.text.toUtf8());
        return 0;
    }

    if (line.command == CommandLine::Command::Run && line.run.worker)
        ThreadSignals::keepAway();
    preparePlatform();
    LogRecords::writeToStandardError();
    // The arguments belong to this program; the toolkit gets only the program's name.
    int toolkitArguments = 1;
    QApplication application(toolkitArguments, argv);
    resetLocale();
    QApplication::setApplicationName(QStringLiteral("Vantrel"));
    QApplication::setDesktopFileName(QStringLiteral("vantrel"));
    QApplication::setApplicationVersion(QStringLiteral(VANTREL_VERSION));
    // While the main window is hidden, closing a dialog must not end the application.
    QApplication::setQuitOnLastWindowClosed(false);
    if (needsDisplay(line) && isDisplayMissing()) {
        writeAll(STDERR_FILENO, QByteArrayLiteral("vantrel: ") + noDisplayText);
        return 2;
    }
    return line.command == CommandLine::Command::Run ? runScripts(line.run) : openViewer(line.view);
}
