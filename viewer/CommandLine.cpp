#include "CommandLine.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QRegularExpression>

namespace {

const char* const programUsage = R"(Usage: vantrel run [options] SCRIPT...
       vantrel view [FILE...]

  run    runs the scripts one after another in one interpreter
  view   opens the desktop viewer

vantrel run --help tells the options of run.
)";

const char* const runUsage = R"(Usage: vantrel run [options] SCRIPT...

Runs the scripts one after another in one process and one interpreter, each its own run.

  --open FILE         open FILE in a view before the first script (repeatable)
  --image NAME=FILE   publish the file's image to the scripts as variable NAME (repeatable)
  --sim-cameras N     number of simulated cameras opened at start, 0 to 4 (default 2)
  --answer TEXT       answer for the next dialog (repeatable, first in, first used): the label of
                      the button to press, or the text to enter; <cancel> dismisses the dialog
  --worker            run the scripts on a thread that is not the GUI thread
  --workdir DIR       the scripts' working directory (default: each script's own folder)
  --python-home DIR   another Python home than the built one
  --log FILE          append the log records to FILE instead of writing them to standard error
  --show              show the windows and stay open after the last script

What a script prints goes to standard output, its errors go to standard error.
Without --show the main window stays hidden; dialogs that scripts open appear where there is a
display. Without a display a dialog for which no answer is left is dismissed.

Exit status: 0 when no script wrote to its standard error, 1 when one did, 2 for wrong usage or an
unreadable file. A script that raises SystemExit ends the process with its own code.
)";

const char* const viewUsage = R"(Usage: vantrel view [FILE...]

Opens the desktop viewer, with a view for each image file.
)";

constexpr int mostSimulatedCameras = 4;

CommandLine wrong(const QString& sentence)
{
    CommandLine line;
    line.text = sentence;
    return line;
}

CommandLine textToShow(const char* text)
{
    CommandLine line;
    line.call = CommandLine::Call::Text;
    line.text = QString::fromUtf8(text);
    return line;
}

QCommandLineOption valueOption(const QString& name, const QString& value)
{
    return {name, QString(), value};
}

/// Splits NAME=FILE; an empty name when it is not of that form or NAME cannot be a variable.
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
    const QCommandLineOption log = valueOption(QStringLiteral("log"), QStringLiteral("FILE"));
    const QCommandLineOption show(QStringLiteral("show"));
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    QCommandLineParser parser;
    parser.addOptions({open, image, cameras, answer, worker, workdir, home, log, show, help});
    if (!parser.parse(QStringList(QStringLiteral("run")) + arguments))
        return wrong(parser.errorText());
    if (parser.isSet(help))
        return textToShow(runUsage);

    CommandLine line;
    line.call = CommandLine::Call::Run;
    RunOptions& run = line.run;
    run.scripts = parser.positionalArguments();
    if (run.scripts.isEmpty())
        return wrong(QStringLiteral("No script is given to run."));
    run.filesToOpen = parser.values(open);
    for (const QString& argument : parser.values(image)) {
        run.images.append(variableAndFile(argument));
        if (run.images.last().first.isEmpty())
            return wrong(
                QStringLiteral("--image takes NAME=FILE with the name of a variable, not '%1'.").arg(argument));
    }
    if (parser.isSet(cameras)) {
        bool isNumber = false;
        run.simulatedCameras = parser.value(cameras).toInt(&isNumber);
        if (!isNumber || run.simulatedCameras < 0 || run.simulatedCameras > mostSimulatedCameras)
            return wrong(QStringLiteral("--sim-cameras takes a number from 0 to %1, not '%2'.")
                             .arg(mostSimulatedCameras)
                             .arg(parser.value(cameras)));
    }
    run.answers = parser.values(answer);
    run.worker = parser.isSet(worker);
    run.workingDirectory = parser.value(workdir);
    run.pythonHome = parser.value(home);
    run.logFile = parser.value(log);
    run.show = parser.isSet(show);
    for (const QCommandLineOption& option : {workdir, home, log})
        if (parser.isSet(option) && parser.value(option).isEmpty())
            return wrong(QStringLiteral("--%1 needs a value.").arg(option.names().first()));
    return line;
}

CommandLine parseView(const QStringList& arguments)
{
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    QCommandLineParser parser;
    parser.addOption(help);
    if (!parser.parse(QStringList(QStringLiteral("view")) + arguments))
        return wrong(parser.errorText());
    if (parser.isSet(help))
        return textToShow(viewUsage);
    CommandLine line;
    line.call = CommandLine::Call::View;
    line.view.files = parser.positionalArguments();
    return line;
}

} // namespace

CommandLine parseCommandLine(const QStringList& arguments)
{
    if (arguments.isEmpty())
        return wrong(QStringLiteral("No call is given: vantrel run SCRIPT... or vantrel view [FILE...]."));
    const QString& call = arguments.first();
    if (call == QStringLiteral("run"))
        return parseRun(arguments.mid(1));
    if (call == QStringLiteral("view"))
        return parseView(arguments.mid(1));
    if (call == QStringLiteral("--help") || call == QStringLiteral("-h") || call == QStringLiteral("help"))
        return textToShow(programUsage);
    if (call == QStringLiteral("--version"))
        return textToShow("vantrel " VANTREL_VERSION "\n");
    return wrong(QStringLiteral("'%1' is no call of vantrel: it has run and view.").arg(call));
}
