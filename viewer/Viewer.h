#pragma once

#include "scripting/ApplicationDelegate.h"
#include "stopping/RunState.h"
#include "stopping/ScriptInterrupt.h"
#include "window/MainWindow.h"

#include <memory>

class ProcessExit;
class PythonSide;
class ScriptConsole;
class ScriptEnvironment;
class ScriptPulse;
class ScriptQueue;

/// The whole application: the main window, the delegate that gives scripts access to it, and the script queue.
class Viewer : public QObject
{
    Q_OBJECT
public:
    struct Settings {
        bool scriptsOnOwnThread = false;
        QString pythonHome;       ///< empty: the Python home of this build
        QString workingDirectory; ///< of all scripts; empty: each script's own folder
        bool showsOutput =
            false; ///< whether the window is shown: it then shows what scripts print, and works meanwhile
        bool exitEndsScript = false; ///< whether an uncaught SystemExit ends its script and not the process
        int simulatedCameras = 2;    ///< number of simulated cameras to open
    };

    explicit Viewer(const Settings& settings);
    ~Viewer() override;

    /// Loads the script plugin. Returns an error message, empty on success.
    QString loadScripting();

    /// Runs a script text when its turn comes. Unless the settings name a working directory, the script works in the
    /// folder of file.
    void runScript(const QString& text, const QString& file);

    /// Runs a script file when its turn comes. If the file cannot be read, shows and logs the reason.
    void runFile(const QString& path);

    MainWindow& window() { return m_window; }
    ScriptQueue& scripts() { return *m_scripts; }
    ScriptInterrupt& interrupt() { return m_interrupt; }
    RunState& runState() { return m_runState; }

private:
    void passOutput(const QString& text);
    void noteRunEnd(const QString& result);
    void completeFiles();
    void closeUnlessBusy();
    void quitAfterScript();

    Settings m_settings;
    ScriptInterrupt m_interrupt;
    RunState m_runState{m_interrupt};
    std::unique_ptr<PythonSide> m_python;
    std::unique_ptr<ScriptPulse> m_pulse;
    MainWindow m_window;
    ApplicationDelegate m_delegate;
    ScriptConsole* m_console = nullptr;
    std::unique_ptr<ProcessExit> m_exit;
    std::unique_ptr<ScriptQueue> m_scripts; // destroyed first: scripts use all the other members
};
