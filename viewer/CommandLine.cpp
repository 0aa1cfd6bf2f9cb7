#include "CommandLine.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QRegularExpression>

namespace {

const char* const programUsage = R"(Usage: vantrel run [options] SCRIPT...
       vantrel view [FILE...]

  run    runs scripts one after another in one interpreter
  view   opens the desktop viewer

For example: vantrel run --show script.py runs a script and shows what it opens.
Use vantrel run --help for the options of run.
)";

const char* const runUsage = R"(Usage: vantrel run [options] SCRIPT... [-- ARGUMENT...]

Runs the scripts one after another in one process and one interpreter. Each script is a separate run.
For example, to run a script and look at what it opens: vantrel run --show script.py

  --open FILE         open FILE in a view before the first script (repeatable)
  --image NAME=FILE   give the scripts the image in FILE as the variable NAME (repeatable)
  --sim-cameras N     number of simulated cameras to open at start, 0 to 4 (default 2)
  --answer TEXT       answer for the next dialog (repeatable, used in the order given): the label of
                      the button to press, or the text to enter; <cancel> dismisses the dialog
  --worker            run the scripts on a thread other than the GUI thread
  --workdir DIR       the scripts' working directory (default: each script's own folder)
  --python-home DIR   use DIR as the Python home instead of the one of this build
  --venv DIR          use the packages of the virtual environment DIR first (default: VIRTUAL_ENV)
  --plain-output      leave sys.stdout alone: a file with encoding, fileno and buffer
  --log FILE          append the log records to FILE instead of writing them to standard error
  --show              show the windows and stay open after the last script
  -- ARGUMENT...      everything after it goes to the scripts as sys.argv[1:]

Scripts print to standard output; their errors go to standard error.
Without --show the main window stays hidden, but dialogs that scripts open appear if there is a
display. Without a display, a dialog is dismissed when no answer is left for it.

Exit status: 0 if every script ended without an uncaught exception, 1 if one did not, 130 if one was
interrupted with Ctrl-C, 2 if nothing could run: wrong usage, a file or folder that cannot be used,
or no script plugin. A script that raises SystemExit ends the process with its own exit code.
)";

const char* const viewUsage = R"(Usage: vantrel view [FILE...]

Opens the desktop viewer with one view for each image file.
)";

constexpr int maxSimulatedCameras = 4;

CommandLine invalid(const QString& sentence)
{
    CommandLine line;
    line.text = sentence;
    return line;
}

CommandLine textToShow(const char* text)
{
    CommandLine line;
    line.command = CommandLine::Command::Text;
    line.text = QString::fromUtf8(text);
    return line;
}

QCommandLineOption valueOption(const QString& name, const QString& value)
{
    return {name, QString(), value};
}

/// Splits NAME=FILE. Returns an empty name if the argument has another form or NAME cannot be the name of a variable.
std::pair<QString, QString> variableAndFile(const QString& argument)
{
    static const QRegularExpression form(QStringLiteral("^([^\\W\\d]\\w*)=(.+)$"),
                                         QRegularExpression::UseUnicodePropertiesOption |
                                             QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = form.match(argument);
    return match.hasMatch() ? std::pair(match.captured(1), match.captured(2)) : std::pair<QString, QString>();
}

CommandLine parseRun(const QStringList& arguments)
{
    const QCommandLineOption open = valueOption(QStringLiteral("open"), QStringLiteral("FILE"));
    const QCommandLineOption image = valueOption(QStringLiteral("image"), QStringLiteral("NAME=FILE"));
    const QCommandLineOption cameras = valueOption(QStringLiteral("sim-cameras"), QStringLiteral("N"));
    const QCommandLineOption answer = valueOption(QStringLiteral("answer"), QStringLiteral("TEXT"));
    const QCommandLineOption worker(QStringLiteral("worker"));
    const QCommandLineOption workdir = valueOption(QStringLiteral("workdir"), QStringLiteral("DIR"));
    const QCommandLineOption home = valueOption(QStringLiteral("python-home"), QStringLiteral("DIR"));
    const QCommandLineOption environment = valueOption(QStringLiteral("venv"), QStringLiteral("DIR"));
    const QCommandLineOption plain(QStringLiteral("plain-output"));
    const QCommandLineOption log = valueOption(QStringLiteral("log"), QStringLiteral("FILE"));
    const QCommandLineOption show(QStringLiteral("show"));
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    QCommandLineParser parser;
    parser.addOptions({open, image, cameras, answer, worker, workdir, home, environment, plain, log, show, help});
    const qsizetype own = arguments.indexOf(QStringLiteral("--"));
    if (!parser.parse(QStringList(QStringLiteral("run")) + arguments.mid(0, own)))
        return invalid(parser.errorText());
    if (parser.isSet(help))
        return textToShow(runUsage);

    CommandLine line;
    line.command = CommandLine::Command::Run;
    RunOptions& run = line.run;
    run.scripts = parser.positionalArguments();
    if (own >= 0)
        run.scriptArguments = arguments.mid(own + 1);
    if (run.scripts.isEmpty())
        return invalid(QStringLiteral("No script given."));
    run.filesToOpen = parser.values(open);
    for (const QString& argument : parser.values(image)) {
        run.images.append(variableAndFile(argument));
        if (run.images.last().first.isEmpty())
            return invalid(
                QStringLiteral("--image needs NAME=FILE with a valid variable name, not '%1'.").arg(argument));
    }
    if (parser.isSet(cameras)) {
        bool isNumber = false;
        run.simulatedCameras = parser.value(cameras).toInt(&isNumber);
        if (!isNumber || run.simulatedCameras < 0 || run.simulatedCameras > maxSimulatedCameras)
            return invalid(QStringLiteral("--sim-cameras needs a number from 0 to %1, not '%2'.")
                               .arg(maxSimulatedCameras)
                               .arg(parser.value(cameras)));
    }
    run.answers = parser.values(answer);
    run.worker = parser.isSet(worker);
    run.workingDirectory = parser.value(workdir);
    run.pythonHome = parser.value(home);
    run.environment = parser.isSet(environment) ? parser.value(environment) : qEnvironmentVariable("VIRTUAL_ENV");
    run.plainOutput = parser.isSet(plain);
    run.logFile = parser.value(log);
    run.show = parser.isSet(show);
    for (const QCommandLineOption& option : {workdir, home, environment, log})
        if (parser.isSet(option) && parser.value(option).isEmpty())
            return invalid(QStringLiteral("--%1 needs a value.").arg(option.names().first()));
    return line;
}

CommandLine parseView(const QStringList& arguments)
{
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    QCommandLineParser parser;
    parser.addOption(help);
    if (!parser.parse(QStringList(QStringLiteral("view")) + arguments))
        return invalid(parser.errorText());
    if (parser.isSet(help))
        return textToShow(viewUsage);
    CommandLine line;
    line.command = CommandLine::Command::View;
    line.view.files = parser.positionalArguments();
    return line;
}

} // namespace

CommandLine parseCommandLine(const QStringList& arguments)
{
    if (arguments.isEmpty())
        return invalid(QStringLiteral("No command given; use vantrel run SCRIPT... or vantrel view [FILE...]."));
    const QString& command = arguments.first();
    if (command == QStringLiteral("run"))
        return parseRun(arguments.mid(1));
    if (command == QStringLiteral("view"))
        return parseView(arguments.mid(1));
    if (command == QStringLiteral("--help") || command == QStringLiteral("-h") || command == QStringLiteral("help"))
        return textToShow(programUsage);
    if (command == QStringLiteral("--version"))
        return textToShow("vantrel " VANTREL_VERSION "\n");
    return invalid(QStringLiteral("Unknown command '%1'; use run or view.").arg(command));
}
