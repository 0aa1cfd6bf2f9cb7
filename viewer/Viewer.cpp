#include "Viewer.h"

#include "process/ProcessExit.h"
#include "process/StandardStreams.h"
#include "scripting/ScriptEnvironment.h"
#include "scripting/ScriptFile.h"
#include "scripting/ScriptQueue.h"
#include "scripting/ScriptRunner.h"
#include "views/ImageView.h"
#include "workshop/ScriptConsole.h"

#include <QtCore/QDebug>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>

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

void dismissDialog()
{
    if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
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
    }
    m_scripts = std::make_unique<ScriptQueue>(
        std::make_unique<ScriptRunner>(m_settings.pythonHome, [this](const QString& text) { passOutput(text); }),
        m_settings.scriptsOnOwnThread);

    connect(m_scripts.get(), &ScriptQueue::runStarted, &m_window, [this] { m_window.setScriptRunning(true); });
    connect(m_scripts.get(), &ScriptQueue::runEnded, this, &Viewer::noteRunEnd);
    connect(&m_window, &MainWindow::scriptChosen, this, &Viewer::runFile);
    connect(&m_window, &MainWindow::scriptStopRequested, &m_interrupt, &ScriptInterrupt::interruptScript);
    connect(&m_window, &MainWindow::closed, this, &Viewer::quitAfterScript);
    connect(&m_interrupt, &ScriptInterrupt::interrupted, this, dismissDialog);
    connect(&m_interrupt, &ScriptInterrupt::interruptedWhileIdle, &m_window, &MainWindow::close);

    ProcessExit::prepare([this] {
        for (const int id : m_window.views().ids())
            m_window.views().view(id)->stopVideoRecording();
    });
}

Viewer::~Viewer()
{
    ProcessExit::prepare(nullptr);
    m_window.disconnect(this);
    m_delegate.endCalls();
    m_scripts.reset();
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
    m_scripts->add(text, std::make_shared<ScriptEnvironment>(folder, [this](const QString& path) { runFile(path); }));
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
    if (m_console)
        QMetaObject::invokeMethod(m_console, [console = m_console, text] { console->appendOutput(text); });
}

void Viewer::noteRunEnd(const QString& result)
{
    writeAll(STDERR_FILENO, result.toUtf8());
    if (m_console && !result.isEmpty())
        m_console->appendError(result);
    m_window.setScriptRunning(m_scripts->isBusy());
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
    m_interrupt.interruptScript();
}
