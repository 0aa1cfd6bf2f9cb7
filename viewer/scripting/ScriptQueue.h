#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

#include <deque>
#include <memory>

class CxImageData;
class QThread;
class ScriptEnvironment;
class ScriptRunner;

/// Has scripts run one after another, never one inside another: what comes while a script runs, also from a menu that
/// is used while a script waits, is run when that script has ended. GUI thread only.
class ScriptQueue : public QObject
{
    Q_OBJECT
public:
    /// Takes over the runner; with ownThread scripts run on a thread that is not the GUI thread.
    ScriptQueue(std::unique_ptr<ScriptRunner> runner, bool ownThread);

    /// Waits for the running script and shuts the interpreter down.
    ~ScriptQueue() override;

    /// Loads the plugin library. Returns what went wrong, empty on success.
    QString load(const QString& library);

    QString language();

    /// Runs the script when its turn comes.
    void add(const QString& script, std::shared_ptr<ScriptEnvironment> environment);

    /// Makes an image a variable of the scripts added later. The interpreter must have been started by a run that has
    /// ended, and no script may run.
    void publish(const QString& name, std::shared_ptr<CxImageData> image);

    /// True from the moment a script is added until the last one has ended.
    bool isBusy() const { return m_running || !m_waiting.empty(); }

    /// Drops the scripts that wait for their turn.
    void clear() { m_waiting.clear(); }

Q_SIGNALS:
    void runStarted();

    /// A run is over; result is what the script wrote to its standard error.
    void runEnded(const QString& result);

    /// The last script has ended.
    void becameIdle();

private:
    struct Job {
        QString script;
        std::shared_ptr<ScriptEnvironment> environment;
    };

    void startNext();
    void noteEnd(const QString& result);

    /// Calls a function on the runner's thread and waits for it. For what does not run script code.
    template<typename Function>
    void callRunner(Function function);

    std::unique_ptr<ScriptRunner> m_runner;
    std::unique_ptr<QThread> m_thread;
    std::deque<Job> m_waiting;
    bool m_running = false;
};
