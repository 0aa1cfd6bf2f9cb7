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
/// Lives on the thread that scripts run on; except for the constructor everything is called there.
class ScriptRunner : public QObject
{
    Q_OBJECT
public:
    /// Receives what a script prints, as it is printed, on the running thread. One for the process, since the plugin's
    /// callback carries no context.
    using Output = std::function<void(const QString& text)>;

    /// pythonHome is the interpreter's home directory.
    explicit ScriptRunner(const QString& pythonHome, Output output);
    ~ScriptRunner() override;

    /// Loads the plugin library. Returns what went wrong, empty on success.
    QString load(const QString& library);

    /// The script language and its version; empty while no plugin is loaded.
    QString language() const;

    /// Runs a script to its end and reports it with ended().
    void run(const QString& script, std::shared_ptr<ScriptEnvironment> environment);

    /// Makes an image a variable of later scripts. Called after a first run only.
    void publish(const QString& name, std::shared_ptr<CxImageData> image);

    /// Shuts the interpreter down.
    void unload();

Q_SIGNALS:
    /// A run is over; result is what the script wrote to its standard error.
    void ended(const QString& result);

private:
    QString m_pythonHome;
    QPluginLoader m_loader;
    CxScriptLangInterface* m_language = nullptr;
    std::shared_ptr<ScriptEnvironment> m_environment; ///< of the latest run: the plugin goes on using it
    std::vector<std::shared_ptr<CxImageData>> m_published;
};
