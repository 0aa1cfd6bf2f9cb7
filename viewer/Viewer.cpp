#include "Viewer.h"

#include "process/ProcessExit.h"
#include "process/StandardStreams.h"
#include "process/UnwrittenErrors.h"
#include "scripting/ScriptEnvironment.h"
#include "scripting/ScriptFile.h"
#include "scripting/ScriptQueue.h"
#include "scripting/ScriptRunner.h"
#include "stopping/PythonSide.h"
#include "stopping/ScriptPulse.h"
#include "views/ImageView.h"
#include "window/ScriptBar.h"
#include "workshop/ScriptConsole.h"

#include <QtCore/QDebug>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QMenu>

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

/// The folder of the viewer's Python side.
QString pythonFolder()
{
    const QDir programs(QCoreApplication::applicationDirPath());
    const QString built = programs.filePath(QStringLiteral("../python"));
    const bool isBuilt = QFileInfo::exists(built + QStringLiteral("/vantrel_viewer"));
    return QDir::cleanPath(isBuilt ? built : programs.filePath(QStringLiteral(VANTREL_INSTALLED_PYTHON)));
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
    if (m_settings.showsOutput) {
        m_console = new ScriptConsole(&m_window);
        m_window.addDockWidget(Qt::BottomDockWidgetArea, m_console);
        m_console->hide();
        QMenu* menu = m_window.menu(MainWindow::ViewMenu);
        menu->addSeparator();
        menu->addAction(m_console->toggleViewAction());
    }
    m_exit = std::make_unique<ProcessExit>(ProcessExit::Hooks{.complete = [this] { completeFiles(); },
                                                              .interruptScript =
                                                                  [] {
                                                                      if (ScriptInterrupt::currentRun() != 0)
                                                                          ScriptPulse::send();
                                                                  }});
    m_python = std::make_unique<PythonSide>(pythonFolder(), m_settings.exitEndsScript);
    m_pulse = std::make_unique<ScriptPulse>(m_settings.showsOutput);
    m_scripts = std::make_unique<ScriptQueue>(
        std::make_unique<ScriptRunner>(m_settings.pythonHome, [this](const QString& text) { passOutput(text); }),
        m_settings.scriptsOnOwnThread);

    connect(m_scripts.get(), &ScriptQueue::runStarted, this, [this](const QString& name) {
        m_window.setScriptRunning(true);
        m_runState.begin(name);
    });
    connect(m_scripts.get(), &ScriptQueue::runEnded, this, &Viewer::noteRunEnd);
    connect(&m_window, &MainWindow::scriptChosen, this, &Viewer::runFile);
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
    m_python.reset();
    m_exit.reset();
}

QString Viewer::loadScripting()
{
    QString problem = m_scripts->load(pluginLibrary());
    m_window.setScriptLanguage(m_scripts->language());
    return problem;
}

void Viewer::runScript(const QString& text, const QString& file)
{
    const QString folder =
        m_settings.workingDirectory.isEmpty() ? QFileInfo(file).absolutePath() : m_settings.workingDirectory;
    m_scripts->add(text, std::make_shared<ScriptEnvironment>(folder, [this](const QString& path) { runFile(path); }),
                   QFileInfo(file).fileName());
}

void Viewer::runFile(const QString& path)
{
    QString problem;
    if (const auto text = readScriptFile(path, problem)) {
        runScript(*text, path);
    } else {
        qCritical().noquote() << problem;
        m_window.showNotification(problem);
    }
}

void Viewer::passOutput(const QString& text)
{
    writeAll(STDOUT_FILENO, text.toUtf8());
    if (m_console && !ProcessExit::isForkedChild())
        m_console->addOutput(text);
}

void Viewer::noteRunEnd(const QString& result)
{
    UnwrittenErrors::forget();
    writeAll(STDERR_FILENO, result.toUtf8());
    if (m_console)
        m_console->appendErrors(result);
    m_delegate.releaseImage();
    m_window.setScriptRunning(m_scripts->isBusy());
    m_runState.end(result);
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
