#include "ScriptQueue.h"

#include "CxImageData.h"
#include "ScriptEnvironment.h"
#include "ScriptRunner.h"
#include "process/ThreadSignals.h"

#include <QtCore/QThread>

#include <future>

namespace {
/// The interpreter's recursion limit assumes a stack as large as a main thread's.
constexpr unsigned stackBytes = 16U << 20U;
} // namespace

ScriptQueue::ScriptQueue(std::unique_ptr<ScriptRunner> runner, bool ownThread)
    : m_runner(std::move(runner))
{
    connect(m_runner.get(), &ScriptRunner::ended, this, &ScriptQueue::noteEnd);
    if (!ownThread)
        return;
    m_thread = std::make_unique<QThread>();
    m_thread->setObjectName(QStringLiteral("scripts"));
    m_thread->setStackSize(stackBytes);
    m_runner->moveToThread(m_thread.get());
    // Without a context object the function is called on the new thread.
    connect(m_thread.get(), &QThread::started, ThreadSignals::receive);
    m_thread->start();
}

ScriptQueue::~ScriptQueue()
{
    clear();
    m_runner->disconnect(this);
    callRunner([this] { m_runner->unload(); });
    if (m_thread) {
        m_thread->quit();
        m_thread->wait();
    }
}

QString ScriptQueue::load(const QString& library)
{
    QString problem;
    callRunner([&] { problem = m_runner->load(library); });
    return problem;
}

void ScriptQueue::refuse(const QString& why)
{
    callRunner([&] { m_runner->refuse(why); });
}

QString ScriptQueue::language()
{
    QString language;
    callRunner([&] { language = m_runner->language(); });
    return language;
}

void ScriptQueue::add(ScriptJob job)
{
    m_waiting.push_back(std::move(job));
    startNext();
}

void ScriptQueue::publish(const QString& name, std::shared_ptr<CxImageData> image)
{
    callRunner([&] { m_runner->publish(name, std::move(image)); });
}

void ScriptQueue::startNext()
{
    if (m_running || m_waiting.empty())
        return;
    m_running = true;
    ScriptJob job = std::move(m_waiting.front());
    m_waiting.pop_front();
    Q_EMIT runStarted(job.name, job.file.isEmpty() ? job.title : job.file);
    // Queued on the GUI thread as well: add() returns before the script starts.
    QMetaObject::invokeMethod(
        m_runner.get(), [runner = m_runner.get(), job] { runner->run(job); }, Qt::QueuedConnection);
}

void ScriptQueue::noteEnd(const QString& result, int outcome)
{
    m_running = false;
    Q_EMIT runEnded(result, ScriptOutcome(outcome));
    startNext();
    if (!isBusy())
        Q_EMIT becameIdle();
}

template<typename Function>
void ScriptQueue::callRunner(Function function)
{
    if (!m_thread) {
        function();
        return;
    }
    // A future also brings back what the function throws, and the thread sanitizer understands its wait.
    const auto task = std::make_shared<std::packaged_task<void()>>(std::move(function));
    std::future<void> done = task->get_future();
    QMetaObject::invokeMethod(
        m_runner.get(), [task] { (*task)(); }, Qt::QueuedConnection);
    done.get();
}
