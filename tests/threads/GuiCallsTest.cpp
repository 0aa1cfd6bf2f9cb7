#include "process/GuiCalls.h"

#include "support/SleepingThread.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include <sys/resource.h>

namespace {

/// How often the calling thread has gone to sleep and woken up so far.
long wakeUpsOfThisThread()
{
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_nvcsw;
}

TEST(GuiCallsTest, RunAtOnceOnTheGuiThread)
{
    GuiCalls calls;
    bool called = false;
    EXPECT_TRUE(calls.run([&called] { called = true; }));
    EXPECT_TRUE(called);
}

TEST(GuiCallsTest, RunOnTheGuiThreadForOthersWhichWait)
{
    GuiCalls calls;
    QThread* calledOn = nullptr;
    std::atomic<bool> returned = false;
    bool result = false;
    std::thread worker([&] {
        result = calls.run([&calledOn] { calledOn = QThread::currentThread(); });
        returned = true;
    });
    while (!returned)
        QCoreApplication::processEvents();
    worker.join();
    EXPECT_TRUE(result);
    EXPECT_EQ(calledOn, QThread::currentThread());
}

TEST(GuiCallsTest, ThrowToTheCallerOnTheGuiThread)
{
    GuiCalls calls;
    EXPECT_THROW(calls.run([] { throw std::runtime_error("broken"); }), std::runtime_error);
}

TEST(GuiCallsTest, ThrowToTheCallerOnAnotherThreadAndNotThroughTheEventLoop)
{
    GuiCalls calls;
    std::atomic<bool> returned = false;
    std::string caught;
    bool laterCall = false;
    std::thread worker([&] {
        try {
            calls.run([] { throw std::runtime_error("broken"); });
        } catch (const std::runtime_error& error) {
            caught = error.what();
        }
        laterCall = calls.run([] {});
        returned = true;
    });
    while (!returned)
        EXPECT_NO_THROW(QCoreApplication::processEvents());
    worker.join();
    EXPECT_EQ(caught, "broken");
    EXPECT_TRUE(laterCall);
}

TEST(GuiCallsTest, GiveUpWhenTheEventLoopHasEndedAndAreNotMadeLater)
{
    GuiCalls calls;
    bool called = false;
    bool result = true;
    std::atomic<int> number = 0;
    std::thread worker([&] {
        number = threadNumber();
        result = calls.run([&called] { called = true; });
    });
    while (!number || !threadSleeps(getpid(), number))
        std::this_thread::yield();
    calls.end();
    worker.join();
    QCoreApplication::processEvents();
    EXPECT_FALSE(result);
    EXPECT_FALSE(called);
}

TEST(GuiCallsTest, SleepUntilTheyAreNotified)
{
    GuiCalls calls;
    bool result = true;
    long wakeUps = 0;
    std::thread worker([&] {
        const long before = wakeUpsOfThisThread();
        result = calls.run([] {});
        wakeUps = wakeUpsOfThisThread() - before;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(600));
    calls.end();
    worker.join();
    EXPECT_FALSE(result);
    EXPECT_LT(wakeUps, 6); // looking every 50 ms would take twelve
}

TEST(GuiCallsTest, GiveUpWhenTheObjectIsDeleted)
{
    auto calls = std::make_unique<GuiCalls>();
    std::atomic<bool> isWaiting = false;
    bool result = true;
    std::thread worker([&result, &isWaiting, object = calls.get()] {
        isWaiting = true;
        result = object->run([] {});
    });
    while (!isWaiting)
        std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    calls.reset();
    worker.join();
    EXPECT_FALSE(result);
}

} // namespace
