#pragma once

#include "scripting/ApplicationDelegate.h"
#include "scripting/ScriptJob.h"
#include "stopping/RunState.h"
#include "stopping/ScriptInterrupt.h"
#include "window/MainWindow.h"

#include <functional>
#include <memory>

class EditorDock;
class ProcessExit;
class ScriptConsole;
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
            false;           ///< whether the window is shown: it then shows what scripts print, and works meanwhile
        QString environment; ///< a virtual environment for scripts; empty: none
        bool plainOutput =
            false; ///< whether what scripts print goes to standard output alone, from the interpreter itself
        bool exitEndsScript = false; ///< whether an uncaught SystemExit ends its script and not the process
        int simulatedCameras = 2;    ///< number of simulated cameras to open
    };

    explicit Viewer(const Settings& settings);
    ~Viewer() override;

    /// Loads the script plugin. Returns an error message, empty on success.
    QString loadScripting();

    /// Runs a script file when its turn comes. Unless the settings name a working directory, the script works in the
    /// file's folder. If the file cannot be read, shows and logs the reason.
    void runFile(const QString& path, const QStringList& arguments = {});

    /// Runs a text when its turn comes. `title` stands for the file in error messages; `origin` is the file that the
    /// text is a copy of, and empty if there is none.
    void runText(const QString& text, const QString& title, const QString& origin = {});

    /// Runs nothing when its turn comes, as if it were the file. A first run starts the interpreter.
    void startInterpreter(const QString& file);

    /// Arranges the window as it was when the viewer ended last, and opens the same scripts.
    void restoreWindow();

    /// Opens a script in the editor.
    void editFile(const QString& path);

    MainWindow& window() { return m_window; }
    ScriptQueue& scripts() { return *m_scripts; }
    ScriptInterrupt& interrupt() { return m_interrupt; }
    RunState& runState() { return m_runState; }

private:
    void addWorkshop();
    bool mayClose();
    void passOutput(const QString& text);
    ScriptJob jobIn(const QString& file);
    void noteRunEnd(const QString& result, ScriptOutcome outcome);
    void completeFiles();
    void askForEnvironment();
    void closeUnlessBusy();
    void quitAfterScript();

    Settings m_settings;
    ScriptInterrupt m_interrupt;
    RunState m_runState{m_interrupt};
    std::unique_ptr<ScriptPulse> m_pulse;
    MainWindow m_window;
    ApplicationDelegate m_delegate;
    ScriptConsole* m_console = nullptr;
    EditorDock* m_editor = nullptr;
    std::function<void()> m_runAgain; ///< the last run; empty: none yet
    bool m_closeAgreed = false;       ///< whether the user has dealt with all unsaved scripts
    std::unique_ptr<ProcessExit> m_exit;
    std::unique_ptr<ScriptQueue> m_scripts; // destroyed first: scripts use all the other members
};
