#include "GuiCalls.h"

#include <QtCore/QThread>

#include <condition_variable>
#include <exception>
#include <mutex>
#include <utility>

/// What the calls share. They keep it alive when the object is deleted before they return.
struct GuiCalls::State {
    std::mutex mutex;
    std::condition_variable changed; ///< notified when the calls end, and when a call is done
    bool isEnded = false;
};

namespace {

/// A call that waits for its turn. Shared, because the caller may give up before the GUI thread gets to it. The mutex
/// guards all members.
struct Call {
    enum class Progress { Waiting, Running, Done, GivenUp };

    Progress progress = Progress::Waiting;
    std::exception_ptr thrown; ///< by the function; for the caller once the call is done

    void perform(const std::function<void()>& function, std::mutex& mutex, std::condition_variable& changed)
    {
        {
            const std::lock_guard lock(mutex);
            if (progress == Progress::GivenUp)
                return;
            progress = Progress::Running;
        }
        std::exception_ptr caught;
        try {
            function();
        } catch (...) {
            caught = std::current_exception();
        }
        {
            const std::lock_guard lock(mutex);
            thrown = std::move(caught);
            progress = Progress::Done;
        }
        changed.notify_all();
    }
};

} // namespace

GuiCalls::GuiCalls()
    : m_state(std::make_shared<State>())
{
}

GuiCalls::~GuiCalls()
{
    end();
}

bool GuiCalls::run(std::function<void()> function)
{
    if (QThread::currentThread() == m_onGuiThread.thread()) {
        function();
        return true;
    }
    const std::shared_ptr<State> state = m_state;
    const auto call = std::make_shared<Call>();
    QMetaObject::invokeMethod(
        &m_onGuiThread,
        [state, call, function = std::move(function)] { call->perform(function, state->mutex, state->changed); },
        Qt::QueuedConnection);
    std::unique_lock lock(state->mutex);
    state->changed.wait(lock, [&] {
        return call->progress == Call::Progress::Done || (state->isEnded && call->progress == Call::Progress::Waiting);
    });
    if (call->progress == Call::Progress::Waiting) {
        call->progress = Call::Progress::GivenUp;
        return false;
    }
    if (call->thrown)
        std::rethrow_exception(std::exchange(call->thrown, nullptr));
    return true;
}

void GuiCalls::end()
{
    {
        const std::lock_guard lock(m_state->mutex);
        m_state->isEnded = true;
    }
    m_state->changed.notify_all();
}
