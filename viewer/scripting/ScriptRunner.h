#pragma once

#include <QtCore/QObject>
#include <QtCore/QPluginLoader>

#include <functional>
#include <memory>

class CxImageData;
class CxScriptLangInterface;
class ScriptEnvironment;

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

    /// pythonHome is the Python home of the interpreter.
    explicit ScriptRunner(const QString& pythonHome, Output output);
    ~ScriptRunner() override;

    /// Loads the plugin library. Returns an error message, empty on success.
    QString load(const QString& library);

    /// The script language and its version; empty if no plugin is loaded.
    QString language() const;

    /// Runs a script to its end, then emits ended().
    void run(const QString& script, std::shared_ptr<ScriptEnvironment> environment);

    /// Makes an image a variable of later scripts. Call it only after a first run.
    void publish(const QString& name, std::shared_ptr<CxImageData> image);

    /// Shuts the interpreter down and releases what it used.
    void unload();

Q_SIGNALS:
    /// A run has ended; result is what the script wrote to its standard error.
    void ended(const QString& result);

private:
    /// Gives the interpreter what the viewer needs to reach a script while it runs.
    void prepare(ScriptEnvironment& environment);

    /// Ends a process that the script has forked and that has come to the end of the script.
    [[noreturn]] void endChild(ScriptEnvironment& environment);

    QString m_pythonHome;
    QPluginLoader m_loader;
    CxScriptLangInterface* m_language = nullptr;
    std::shared_ptr<ScriptEnvironment> m_environment; ///< of the latest run; the plugin still uses it between runs
    std::vector<std::shared_ptr<CxImageData>> m_published;
};
