#pragma once

#include "scripting/ApplicationDelegate.h"
#include "scripting/ScriptInterrupt.h"
#include "window/MainWindow.h"

#include <memory>

class ScriptConsole;
class ScriptEnvironment;
class ScriptQueue;

/// The application put together: the window, what scripts reach of it, and the scripts.
class Viewer : public QObject
{
    Q_OBJECT
public:
    struct Settings {
        bool scriptsOnOwnThread = false;
        QString pythonHome;       ///< empty: the built one
        QString workingDirectory; ///< of all scripts; empty: each script's own folder
        bool showsOutput = false; ///< whether the window shows what scripts print
        int simulatedCameras = 2; ///< number of simulated cameras to open
    };

    explicit Viewer(const Settings& settings);
    ~Viewer() override;

    /// Loads the script plugin. Returns what went wrong, empty on success.
    QString loadScripting();

    /// Runs a script text as if it stood in the file.
    void runScript(const QString& text, const QString& file);

    /// Runs a script file; one that cannot be read is reported to the user and the log.
    void runFile(const QString& path);

    MainWindow& window() { return m_window; }
    ScriptQueue& scripts() { return *m_scripts; }
    ScriptInterrupt& interrupt() { return m_interrupt; }

private:
    void passOutput(const QString& text);
    void noteRunEnd(const QString& result);
    void endPatiently();

    Settings m_settings;
    ScriptInterrupt m_interrupt;
    MainWindow m_window;
    ApplicationDelegate m_delegate;
    ScriptConsole* m_console = nullptr;
    std::unique_ptr<ScriptQueue> m_scripts; // goes first: scripts use all the rest
};
