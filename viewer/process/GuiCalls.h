#pragma once

#include <QtCore/QObject>

#include <atomic>
#include <functional>

/// Has functions run on the GUI thread for scripts that run on a thread of their own.
class GuiCalls
{
public:
    /// Calls function on the GUI thread and waits until it has returned. False when it was not called, since the
    /// application ends. What the function throws is thrown again here, on the calling thread: the event loop never
    /// sees it.
    bool run(std::function<void()> function);

    /// Called on the GUI thread when its event loop will not run any more: calls that wait for it give up.
    void end() { m_ended = true; }

private:
    QObject m_onGuiThread;
    std::atomic<bool> m_ended = false;
};
