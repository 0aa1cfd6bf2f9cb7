#include "GuiCalls.h"

#include <QtCore/QThread>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace {

/// A call that waits for its turn. Shared, since either side may be done with it first.
struct Call {
    enum class State { Waiting, Running, Done, GivenUp };

    std::mutex mutex;
    std::condition_variable changed;
    State state = State::Waiting;

    void perform(const std::function<void()>& function)
    {
        {
            const std::lock_guard lock(mutex);
            if (state == State::GivenUp)
                return;
            state = State::Running;
        }
        function();
        {
            const std::lock_guard lock(mutex);
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
    return true;
}
