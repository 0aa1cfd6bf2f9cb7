#include "RunState.h"

#include "EventLoops.h"
#include "ScriptInterrupt.h"
#include "ScriptPulse.h"

namespace {

constexpr int updateMilliseconds = 250;

/// The viewer's own waits and dialogs end much sooner after a stop.
constexpr int loopPatience = 1000;

/// Nobody sees the name of a script and presses Stop in less time.
constexpr int reactionMilliseconds = 200;

} // namespace

RunState::RunState(ScriptInterrupt& interrupt)
    : m_interrupt(interrupt)
{
    m_timer.setInterval(updateMilliseconds);
    connect(&m_timer, &QTimer::timeout, this, &RunState::update);
    // Ctrl-C in the terminal is shown like a stop.
    connect(&interrupt, &ScriptInterrupt::interrupted, this, [this] {
        if (isRunning() && !m_sinceStop.isValid())
            m_sinceStop.start();
        update();
    });
}

void RunState::begin(const QString& name)
{
    m_name = name;
    m_followsOther = m_hasJustEnded;
    m_clock.start();
    m_sinceStop.invalidate();
    m_timer.start();
    show(ScriptState::Running);
}

void RunState::end(ScriptState how)
{
    m_timer.stop();
    m_interrupt.stopNextRun(false);
    show(how);
    m_clock.invalidate();
    m_sinceStop.invalidate();
    m_hasJustEnded = true;
    QMetaObject::invokeMethod(
        this, [this] { m_hasJustEnded = false; }, Qt::QueuedConnection);
}

void RunState::stopSeen()
{
    if (!m_followsOther || m_clock.elapsed() >= reactionMilliseconds)
        stop();
}

void RunState::stop()
{
    if (!isRunning())
        return;
    if (!m_sinceStop.isValid())
        m_sinceStop.start();
    if (ScriptInterrupt::currentRun() != 0)
        m_interrupt.interruptScript();
    else
        m_interrupt.stopNextRun(true);
    update();
}

void RunState::stopForGood()
{
    if (!isRunning())
        return;
    m_sinceStop.start();
    m_interrupt.stopForGood(ScriptInterrupt::currentRun());
    if (ScriptPulse::isInEventLoop())
        EventLoops::endInner();
    update();
}

void RunState::update()
{
    if (!isRunning())
        return;
    // In an event loop of the script nothing raises the error.
    if (m_sinceStop.isValid() && m_sinceStop.elapsed() > loopPatience && ScriptInterrupt::isStopPending() &&
        ScriptPulse::isInEventLoop())
        EventLoops::endInner();
    if (!m_sinceStop.isValid())
        show(ScriptState::Running);
    else if (m_sinceStop.elapsed() < patience)
        show(ScriptState::StopRequested);
    else
        show(ScriptInterrupt::isStopPending() ? ScriptState::Uninterruptible : ScriptState::StopCaught);
}

void RunState::show(ScriptState state)
{
    m_state = state;
    Q_EMIT changed(state, m_name, double(m_clock.elapsed()) / 1000);
}
