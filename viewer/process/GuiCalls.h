#pragma once

#include <QtCore/QObject>

#include <functional>
#include <memory>

/// Runs functions on the GUI thread for scripts that run on another thread.
class GuiCalls
{
public:
    /// Constructed and destroyed on the GUI thread.
    GuiCalls();

    /// Ends the calls as end() does.
    ~GuiCalls();

    /// Calls a function on the GUI thread and waits until it has returned. False if it was not called because the calls
    /// have ended. What the function throws is thrown on the calling thread; the event loop never sees it.
    bool run(std::function<void()> function);

    /// Gives up the calls that wait for the GUI thread, and all later ones from other threads. Called on the GUI thread
    /// when its event loop does not run any more. A function that runs already is completed.
    void end();

private:
    struct State;

    QObject m_onGuiThread;
    std::shared_ptr<State> m_state;
    Q_DISABLE_COPY_MOVE(GuiCalls)
};
