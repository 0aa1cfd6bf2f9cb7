#include "Viewer.h"

#include "editor/EditorDock.h"
#include "interpreter/PythonFolders.h"
#include "process/ProcessExit.h"
#include "process/StandardStreams.h"
#include "process/UnwrittenErrors.h"
#include "scripting/ScriptEnvironment.h"
#include "scripting/ScriptFile.h"
#include "scripting/ScriptQueue.h"
#include "scripting/ScriptRunner.h"
#include "stopping/ScriptPulse.h"
#include "views/ImageView.h"
#include "window/ScriptBar.h"
#include "workshop/EnvironmentDialog.h"
#include "workshop/Preferences.h"
#include "workshop/ScriptConsole.h"

#include <QtCore/QDebug>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

#include <unistd.h>

namespace {

QString pluginLibrary()
{
    QString chosen = qEnvironmentVariable("VANTREL_PLUGIN");
    if (!chosen.isEmpty())
        return chosen;
    const QDir programs(QCoreApplication::applicationDirPath());
    const QString built = programs.filePath(QStringLiteral("../plugins/libvantrel_python.so"));
    return QFileInfo::exists(built) ? built : programs.filePath(QStringLiteral(VANTREL_INSTALLED_PLUGIN));
}

QString absolute(const QString& folder)
{
    return folder.isEmpty() ? folder : QDir(folder).absolutePath();
}

ScriptState endOf(ScriptOutcome outcome)
{
    switch (outcome) {
    case ScriptOutcome::Failed:
        return ScriptState::Failed;
    case ScriptOutcome::Interrupted:
        return ScriptInterrupt::wasInterrupted() ? ScriptState::Stopped : ScriptState::Failed;
    default:
        return ScriptState::Finished;
    }
}

/// Dismisses the dialogs that a script has opened and waits for.
void dismissDialogs()
{
    for (QWidget* window : QApplication::topLevelWidgets())
        if (auto* dialog = qobject_cast<QDialog*>(window))
            if (dialog->isVisible() && dialog->isModal() && !MainWindow::isOwnDialog(*dialog))
                dialog->reject();
}

} // namespace

Viewer::Viewer(const Settings& settings)
    : m_settings(settings)
    , m_delegate(m_window)
{
    if (m_settings.pythonHome.isEmpty())
        m_settings.pythonHome = QStringLiteral(VANTREL_PYTHON_HOME);
    m_delegate.cameras().openSimulated(m_settings.simulatedCameras);
    if (m_settings.showsOutput)
        addWorkshop();
    m_exit = std::make_unique<ProcessExit>(ProcessExit::Hooks{.complete = [this] { completeFiles(); },
                                                              .interruptScript =
                                                                  [] {
                                                                      if (ScriptInterrupt::currentRun() != 0)
                                                                          ScriptPulse::send();
                                                                  }});
    m_pulse = std::make_unique<ScriptPulse>(m_settings.showsOutput);
    m_scripts = std::make_unique<ScriptQueue>(
        std::make_unique<ScriptRunner>(ScriptRunner::Settings{.pythonHome = m_settings.pythonHome,
                                                              .environment = absolute(m_settings.environment),
                                                              .plainOutput = m_settings.plainOutput,
                                                              .exitEndsScript = m_settings.exitEndsScript},
                                       [this](const QString& text) { passOutput(text); }),
        m_settings.scriptsOnOwnThread);

    connect(m_scripts.get(), &ScriptQueue::runStarted, this, [this](const QString& name, const QString& source) {
        m_window.setScriptRunning(true);
        m_runState.begin(name);
        if (m_editor)
            m_editor->showRunning(source);
    });
    connect(m_scripts.get(), &ScriptQueue::runEnded, this, &Viewer::noteRunEnd);
    connect(&m_window, &MainWindow::scriptChosen, this, [this](const QString& path) { runFile(path); });
    connect(&m_window, &MainWindow::scriptStopRequested, &m_runState, &RunState::stopSeen);
    connect(&m_window.scriptBar(), &ScriptBar::stopForGoodRequested, &m_runState, &RunState::stopForGood);
    connect(&m_runState, &RunState::changed, &m_window.scriptBar(), &ScriptBar::display);
    connect(&m_window, &MainWindow::closed, this, &Viewer::quitAfterScript);
    connect(&m_interrupt, &ScriptInterrupt::interrupted, this, dismissDialogs);
    connect(&m_interrupt, &ScriptInterrupt::interruptedWhileIdle, this, &Viewer::closeUnlessBusy);
}

Viewer::~Viewer()
{
    ProcessExit::complete();
    m_window.disconnect(this);
    m_delegate.endCalls();
    m_scripts.reset();
    m_pulse.reset();
    m_exit.reset();
}

void Viewer::addWorkshop()
{
    m_console = new ScriptConsole(&m_window);
    m_window.addDockWidget(Qt::BottomDockWidgetArea, m_console);
    m_console->hide();
    m_editor = new EditorDock([this](QDialog* dialog) { m_window.openDialog(dialog); }, &m_window);
    m_window.addDockWidget(Qt::RightDockWidgetArea, m_editor);
    m_editor->hide();
    QMenu* views = m_window.menu(MainWindow::ViewMenu);
    views->addSeparator();
    views->addAction(m_editor->toggleViewAction());
    views->addAction(m_console->toggleViewAction());
    QMenu* scripts = m_window.menu(MainWindow::ScriptMenu);
    scripts->addAction(tr("Python &Environment..."), this, &Viewer::askForEnvironment);
    scripts->addSeparator();
    m_editor->addTo(*m_window.menuBar(), *scripts);
    connect(m_editor, &EditorDock::runFileRequested, this, [this](const QString& path) { runFile(path); });
    connect(m_editor, &EditorDock::runTextRequested, this, &Viewer::runText);
    connect(m_editor, &EditorDock::runAgainRequested, this, [this] {
        if (const auto run = m_runAgain) // a copy: it sets the original
            run();
    });
    connect(m_console, &ScriptConsole::placeChosen, m_editor, &EditorDock::showLine);
    m_window.setCloseQuestion([this] { return mayClose(); });
}

bool Viewer::mayClose()
{
    const bool may = m_closeAgreed || m_editor->tabs().mayClose([this] {
        m_closeAgreed = true;
        m_window.close();
        m_closeAgreed = false;
    });
    if (may)
        Preferences::setWindow(m_window.saveGeometry(), m_window.saveState());
    return may;
}

QString Viewer::loadScripting()
{
    if (QString problem = m_scripts->load(pluginLibrary()); !problem.isEmpty())
        return problem;
    const QString language = m_scripts->language();
    m_window.setScriptLanguage(language);
    if (!language.startsWith(QStringLiteral("Python ")))
        return {};
    QString problem = PythonFolders::problemWithHome(m_settings.pythonHome, language);
    if (problem.isEmpty())
        problem = PythonFolders::problemWithEnvironment(m_settings.environment, language);
    if (!problem.isEmpty())
        m_scripts->refuse(problem);
    return problem;
}

void Viewer::runFile(const QString& path, const QStringList& arguments)
{
    if (const QString problem = problemWithScriptFile(path); !problem.isEmpty()) {
        qCritical().noquote() << problem;
        m_window.showNotification(problem);
        return;
    }
    ScriptJob job = jobIn(path);
    job.file = QFileInfo(path).absoluteFilePath();
    job.shownPath = path;
    job.arguments = arguments;
    m_scripts->add(std::move(job));
    m_runAgain = [this, path = QFileInfo(path).absoluteFilePath(), arguments] { runFile(path, arguments); };
}

void Viewer::runText(const QString& text, const QString& title, const QString& origin)
{
    const QString file = origin.isEmpty() ? QDir::current().filePath(title) : origin;
    ScriptJob job = jobIn(file);
    job.text = text;
    job.title = title;
    job.origin = file;
    job.name = title;
    m_scripts->add(std::move(job));
    m_runAgain = [this, text, title, origin] { runText(text, title, origin); };
}

void Viewer::restoreWindow()
{
    // Nothing happens if the preferences hold something else.
    m_window.restoreGeometry(Preferences::windowGeometry());
    m_window.restoreState(Preferences::windowState());
    m_editor->restore();
}

void Viewer::editFile(const QString& path)
{
    if (m_editor->tabs().open(path))
        m_editor->show();
}

void Viewer::startInterpreter(const QString& file)
{
    m_scripts->add(jobIn(file));
}

void Viewer::askForEnvironment()
{
    const QString own = qEnvironmentVariable("VIRTUAL_ENV");
    const QString note = own.isEmpty() ? QString() : tr("VIRTUAL_ENV is set, so this viewer uses %1.").arg(own);
    auto* dialog = new EnvironmentDialog(
        Preferences::environment(), note,
        [this](const QString& folder) { return PythonFolders::problemWithEnvironment(folder, m_scripts->language()); },
        &m_window);
    connect(dialog, &EnvironmentDialog::environmentChosen, this, &Preferences::setEnvironment);
    m_window.openDialog(dialog);
}

ScriptJob Viewer::jobIn(const QString& file)
{
    const QFileInfo info(file);
    const QString folder = m_settings.workingDirectory.isEmpty() ? info.absolutePath() : m_settings.workingDirectory;
    ScriptJob job;
    job.environment = std::make_shared<ScriptEnvironment>(folder, [this](const QString& path) { runFile(path); });
    job.name = info.fileName();
    return job;
}

void Viewer::passOutput(const QString& text)
{
    writeAll(STDOUT_FILENO, text.toUtf8());
    if (m_console && !ProcessExit::isForkedChild())
        m_console->addOutput(text);
}

void Viewer::noteRunEnd(const QString& result, ScriptOutcome outcome)
{
    UnwrittenErrors::forget();
    writeAll(STDERR_FILENO, result.toUtf8());
    if (m_console)
        m_console->appendErrors(result);
    if (m_editor) {
        m_editor->showRunning({});
        if (outcome == ScriptOutcome::Failed)
            m_editor->showErrors(result);
    }
    m_delegate.releaseImage();
    m_window.setScriptRunning(m_scripts->isBusy());
    m_runState.end(endOf(outcome));
}

void Viewer::completeFiles()
{
    for (const int id : m_window.views().ids())
        m_window.views().view(id)->stopVideoRecording();
}

void Viewer::closeUnlessBusy()
{
    // Between two scripts of the visible window Ctrl-C has nothing to stop, but the user did not mean the window.
    if (!m_scripts->isBusy() || !m_window.isVisible())
        m_window.close();
}

void Viewer::quitAfterScript()
{
    // A running script is interrupted; the application quits when that script has ended.
    m_scripts->clear();
    if (!m_scripts->isBusy()) {
        QCoreApplication::quit();
        return;
    }
    connect(m_scripts.get(), &ScriptQueue::becameIdle, qApp, &QCoreApplication::quit);
    m_runState.stop();
    // The window with its button is gone.
    QTimer::singleShot(RunState::patience, &m_runState, &RunState::stopForGood);
}
