#pragma once

#include "ScriptJob.h"

#include <QtCore/QObject>
#include <QtCore/QPluginLoader>

#include <functional>
#include <memory>

class CxImageData;
class ReleasedInterpreter;
class CxScriptLangInterface;

/// Owns the script plugin and runs scripts with it, one at a time.
///
/// All functions but the constructor and the destructor are called on the thread that runs scripts. If the destructor
/// runs on another thread, unload() comes first.
class ScriptRunner : public QObject
{
    Q_OBJECT
public:
    /// Receives each piece of text that a script prints, at once and on the thread that prints it. One per process,
    /// since the plugin's callback carries no context.
    using Output = std::function<void(const QString& text)>;

    struct Settings {
        QString pythonHome;          ///< of the interpreter
        QString environment;         ///< the absolute path of a virtual environment; empty: none
        bool plainOutput = false;    ///< whether standard output is left to the interpreter
        bool exitEndsScript = false; ///< whether a SystemExit ends a script file only, not the process
    };

    ScriptRunner(Settings settings, Output output);
    ~ScriptRunner() override;

    /// Loads the plugin library. Returns an error message, empty on success.
    QString load(const QString& library);

    /// The script language and its version; empty if no plugin is loaded.
    QString language() const;

    /// From now on no script runs; each fails with the sentence that says why.
    void refuse(const QString& why) { m_refusal = why; }

    /// Runs a script to its end, then emits ended().
    void run(const ScriptJob& job);

    /// Makes an image a variable of later scripts. Call it only after a first run.
    void publish(const QString& name, std::shared_ptr<CxImageData> image);

    /// Shuts the interpreter down and releases what it used.
    void unload();

Q_SIGNALS:
    /// A run has ended; result is what the script wrote to its standard error, outcome is a ScriptOutcome. An int,
    /// since the toolkit itself carries those from thread to thread.
    void ended(const QString& result, int outcome);

private:
    /// Runs Python text of the viewer. Returns what it writes to standard error.
    QString runOwn(const QString& text, ScriptEnvironment& environment);

    /// Gives the interpreter what the viewer needs to run files and to reach a script while it runs. Returns an error
    /// message, empty on success.
    QString prepare(ScriptEnvironment& environment);

    /// Ends a process that the script has forked and that has come to the end of the script.
    [[noreturn]] void endChild(ScriptEnvironment& environment, bool succeeded);

    Settings m_settings;
    QString m_refusal;
    bool m_isPrepared = false;
    std::unique_ptr<ReleasedInterpreter> m_betweenRuns; ///< lets threads go on that a script has left behind
    QPluginLoader m_loader;
    CxScriptLangInterface* m_language = nullptr;
    std::shared_ptr<ScriptEnvironment> m_environment; ///< of the latest run; the plugin still uses it between runs
    std::vector<std::shared_ptr<CxImageData>> m_published;
};
