#include "process/GuiCalls.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

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

TEST(GuiCallsTest, GiveUpWhenTheEventLoopHasEndedAndAreNotMadeLater)
{
    GuiCalls calls;
    bool called = false;
    bool result = true;
    std::thread worker([&] { result = calls.run([&called] { called = true; }); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    calls.end();
    worker.join();
    QCoreApplication::processEvents();
    EXPECT_FALSE(result);
    EXPECT_FALSE(called);
}

} // namespace
