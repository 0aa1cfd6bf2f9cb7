#include "RunCommand.h"

#include "CommandLine.h"
#include "CxImageData.h"
#include "Viewer.h"
#include "process/LogRecords.h"
#include "process/StandardStreams.h"
#include "scripting/DialogAnswers.h"
#include "scripting/ScriptFile.h"
#include "scripting/ScriptQueue.h"
#include "stopping/EventLoops.h"
#include "views/ImageFiles.h"

#include <QtCore/QFileInfo>
#include <QtWidgets/QApplication>

#include <deque>
#include <unistd.h>

namespace {

constexpr int scriptErrorStatus = 1;
constexpr int nothingRanStatus = 2;
constexpr int interruptedStatus = 130; // as a shell reports a program that SIGINT has ended

bool dialogsAreVisible()
{
    const QString platform = QGuiApplication::platformName();
    return platform != QStringLiteral("offscreen") && platform != QStringLiteral("minimal");
}

/// One `vantrel run`, from its first script to its last.
class RunSession : public QObject
{
public:
    explicit RunSession(const RunOptions& options)
        : m_options(options)
        , m_answers(options.answers, dialogsAreVisible())
        , m_viewer({.scriptsOnOwnThread = options.worker,
                    .pythonHome = options.pythonHome,
                    .workingDirectory = options.workingDirectory,
                    .showsOutput = options.show,
                    .environment = options.environment,
                    .plainOutput = options.plainOutput,
                    .simulatedCameras = options.simulatedCameras})
    {
        connect(&m_viewer.scripts(), &ScriptQueue::runEnded, this, &RunSession::noteRunEnd);
        connect(&m_viewer.scripts(), &ScriptQueue::becameIdle, this, &RunSession::noteIdle);
        connect(&m_viewer.window(), &MainWindow::closed, this, [this] { m_scripts.clear(); });
    }

    /// Reads the files of the command line and loads the script plugin. Returns an error message, empty on success.
    QString prepare()
    {
        for (const QString& path : m_options.scripts) {
            if (QString problem = problemWithScriptFile(path); !problem.isEmpty())
                return problem;
            m_scripts.push_back(path);
        }
        const QString& folder = m_options.workingDirectory;
        if (!folder.isEmpty() && !QFileInfo(folder).isDir())
            return QStringLiteral("%1 is not a folder.").arg(folder);
        QString problem = m_viewer.loadScripting();
        if (!problem.isEmpty())
            return problem;
        const auto failure = [](const QString& path, const QString& reason) {
            return QStringLiteral("Cannot open %1 as an image: %2.").arg(path, reason);
        };
        for (const QString& path : m_options.filesToOpen)
            if (!m_viewer.window().views().openFile(path, true, &problem))
                return failure(path, problem);
        for (const auto& [name, path] : m_options.images) {
            std::shared_ptr<CxImageData> image = loadImageFile(path, problem);
            if (!image)
                return failure(path, problem);
            m_images.push_back({name, std::move(image)});
        }
        return {};
    }

    int run()
    {
        if (m_options.show)
            m_viewer.window().show();
        // Images can be published only after a run has started the interpreter: an empty run does that.
        if (m_images.empty())
            startNext();
        else
            m_viewer.startInterpreter(m_scripts.front());
        const int status = EventLoops::run();
        return status ? status : m_status;
    }

private:
    void noteRunEnd(const QString& /*result*/, ScriptOutcome outcome)
    {
        if (outcome == ScriptOutcome::Interrupted)
            m_status = interruptedStatus;
        else if (outcome == ScriptOutcome::Failed && m_status == 0)
            m_status = scriptErrorStatus;
        for (auto& [name, image] : std::exchange(m_images, {}))
            m_viewer.scripts().publish(name, std::move(image));
        // Scripts that the user has chosen from a menu in the meantime come first.
        if (!m_viewer.scripts().isBusy())
            startNext();
    }

    void startNext()
    {
        if (m_scripts.empty())
            return;
        const QString script = std::move(m_scripts.front());
        m_scripts.pop_front();
        m_viewer.runFile(script, m_options.scriptArguments);
    }

    void noteIdle()
    {
        if (!m_scripts.empty())
            return;
        m_answers.stop();
        if (!m_options.show)
            QCoreApplication::quit();
    }

    RunOptions m_options;
    DialogAnswers m_answers;
    std::deque<QString> m_scripts;
    std::vector<std::pair<QString, std::shared_ptr<CxImageData>>> m_images;
    int m_status = 0;
    Viewer m_viewer;
};

} // namespace

int runScripts(const RunOptions& options)
{
    QString problem;
    if (!options.logFile.isEmpty())
        problem = LogRecords::writeToFile(options.logFile);
    if (problem.isEmpty()) {
        RunSession session(options);
        problem = session.prepare();
        if (problem.isEmpty())
            return session.run();
    }
    writeAll(STDERR_FILENO, (QStringLiteral("vantrel run: ") + problem + QLatin1Char('\n')).toUtf8());
    return nothingRanStatus;
}
