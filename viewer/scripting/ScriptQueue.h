#pragma once

#include "ScriptJob.h"

#include <QtCore/QObject>

#include <deque>
#include <memory>

class CxImageData;
class QThread;
class ScriptRunner;

/// Runs scripts one after another, never one inside another. A script that is added while another one runs or waits,
/// for example from a menu, starts when that one has ended. GUI thread only.
class ScriptQueue : public QObject
{
    Q_OBJECT
public:
    /// Takes ownership of the runner. With ownThread scripts run on a thread other than the GUI thread.
    ScriptQueue(std::unique_ptr<ScriptRunner> runner, bool ownThread);

    /// Waits for a script that runs on the other thread, then shuts the interpreter down.
    ~ScriptQueue() override;

    /// Loads the plugin library. Returns an error message, empty on success.
    QString load(const QString& library);

    /// From now on no script runs; each fails with the sentence that says why.
    void refuse(const QString& why);

    /// The script language and its version; empty if no plugin is loaded.
    QString language();

    /// Runs the script when its turn comes.
    void add(ScriptJob job);

    /// Makes an image a variable of later scripts. Call it after a first run has ended, since that run starts the
    /// interpreter, and while no script runs.
    void publish(const QString& name, std::shared_ptr<CxImageData> image);

    /// True from the time a script is added until the last script has ended.
    bool isBusy() const { return m_running || !m_waiting.empty(); }

    /// Drops the scripts that wait for their turn.
    void clear() { m_waiting.clear(); }

Q_SIGNALS:
    /// A run has started. `source` is the absolute path of its file, or its title.
    void runStarted(const QString& name, const QString& source);

    /// A run has ended; result is what the script wrote to its standard error.
    void runEnded(const QString& result, ScriptOutcome outcome);

    /// The last script has ended.
    void becameIdle();

private:
    void startNext();
    void noteEnd(const QString& result, int outcome);

    /// Calls a function on the runner's thread and waits until it returns. Throws what the function throws. The
    /// function must not run a script.
    template<typename Function>
    void callRunner(Function function);

    std::unique_ptr<ScriptRunner> m_runner;
    std::unique_ptr<QThread> m_thread;
    std::deque<ScriptJob> m_waiting;
    bool m_running = false;
};
