#include "GuiCalls.h"

#include <QtCore/QThread>

#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <utility>

namespace {

/// A call that waits for its turn. Shared, since either side may be done with it first.
struct Call {
    enum class State { Waiting, Running, Done, GivenUp };

    std::mutex mutex;
    std::condition_variable changed;
    State state = State::Waiting;
    std::exception_ptr thrown; ///< by the function; for the caller once the state is Done

    void perform(const std::function<void()>& function)
    {
        {
            const std::lock_guard lock(mutex);
            if (state == State::GivenUp)
                return;
            state = State::Running;
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
            state = State::Done;
        }
        changed.notify_all();
    }
};

} // namespace

bool GuiCalls::run(std::function<void()> function)
{
    if (QThread::currentThread() == m_onGuiThread.thread()) {
        function();
        return true;
    }
    const auto call = std::make_shared<Call>();
    QMetaObject::invokeMethod(
        &m_onGuiThread, [call, function = std::move(function)] { call->perform(function); }, Qt::QueuedConnection);
    std::unique_lock lock(call->mutex);
    while (call->state != Call::State::Done) {
        if (m_ended && call->state == Call::State::Waiting) {
            call->state = Call::State::GivenUp;
            return false;
        }
        call->changed.wait_for(lock, std::chrono::milliseconds(50));
    }
    if (call->thrown)
        std::rethrow_exception(std::exchange(call->thrown, nullptr));
    return true;
}
