#include "ScriptWait.h"

#include "interpreter/ReleasedInterpreter.h"
#include "stopping/ScriptInterrupt.h"
#include "views/ImageView.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace {

using std::chrono::milliseconds;

/// A timer counts milliseconds in an int; a longer wait uses several timers.
constexpr milliseconds longestTimer = std::chrono::hours(24);

/// A hundred years: longer than any wait, and far from overflow.
constexpr double longestSeconds = 100.0 * 365 * 24 * 3600;

/// An event loop that also ends when the script is interrupted.
class InterruptibleLoop : public QEventLoop
{
public:
    InterruptibleLoop()
    {
        if (ScriptInterrupt* interrupt = ScriptInterrupt::instance()) {
            interrupt->forgetPending();
            connect(interrupt, &ScriptInterrupt::interrupted, this, [this] { stop(); });
            m_stopped = ScriptInterrupt::isStopPending(); // asked for just before the wait
        }
    }

    /// Ends the wait before its time has passed.
    void stop()
    {
        m_stopped = true;
        quit();
    }

    void run(double seconds)
    {
        if (m_stopped)
            return;
        const ReleasedInterpreter released; // threads of the script go on meanwhile
        const auto whole = milliseconds(std::int64_t(std::ceil(std::min(seconds, longestSeconds) * 1000)));
        const QDeadlineTimer deadline(whole, Qt::PreciseTimer);
        do {
            bool timerFired = false;
            QTimer timer;
            timer.setTimerType(Qt::PreciseTimer);
            timer.setSingleShot(true);
            connect(&timer, &QTimer::timeout, this, [&] {
                timerFired = true;
                quit();
            });
            const auto left = std::chrono::ceil<milliseconds>(deadline.remainingTimeAsDuration());
            timer.start(std::clamp(left, milliseconds(0), longestTimer));
            exec();
            if (!timerFired)
                return; // the application quits, or stop() was called
        } while (!m_stopped && !deadline.hasExpired());
    }

private:
    bool m_stopped = false;
};

} // namespace

void ScriptWait::forTime(double seconds)
{
    if (seconds >= 0)
        InterruptibleLoop().run(seconds);
}

bool ScriptWait::forImage(ImageView& view, double seconds)
{
    if (std::isnan(seconds))
        return false;
    const bool unlimited = seconds < 0 || std::isinf(seconds);
    if (unlimited && !view.isLive())
        return false;
    bool shown = false;
    InterruptibleLoop loop;
    QObject::connect(&view, &ImageView::imageShown, &loop, [&] {
        shown = true;
        loop.stop();
    });
    QObject::connect(&view, &ImageView::closed, &loop, [&] { loop.stop(); });
    QObject::connect(&view, &QObject::destroyed, &loop, [&] { loop.stop(); });
    if (unlimited)
        QObject::connect(&view, &ImageView::liveEnded, &loop, [&] { loop.stop(); });
    loop.run(unlimited ? longestSeconds : seconds);
    return shown;
}
