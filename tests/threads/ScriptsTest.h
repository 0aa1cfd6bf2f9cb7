#pragma once

#include "scripting/ScriptEnvironment.h"
#include "scripting/ScriptQueue.h"
#include "scripting/ScriptRunner.h"
#include "stopping/ScriptInterrupt.h"

#include <QtCore/QDir>
#include <QtTest/QTest>

#include <gtest/gtest.h>

#include <mutex>

/// Scripts of the fake language in a queue, on the GUI thread (false) or on a thread of their own (true).
class ScriptsTest : public testing::TestWithParam<bool>
{
protected:
    static constexpr int patience = 60000; ///< milliseconds until a test gives up

    ScriptsTest() { makeQueue(); }

    /// A new queue in place of the old one.
    void makeQueue()
    {
        queue.reset();
        queue = std::make_unique<ScriptQueue>(
            std::make_unique<ScriptRunner>(ScriptRunner::Settings(), [this](const QString& text) { take(text); }),
            GetParam());
        QObject::connect(queue.get(), &ScriptQueue::runEnded, [this](const QString& result) { results += result; });
        EXPECT_EQ(queue->load(QStringLiteral(FAKE_LANGUAGE)), QString());
    }

    void add(const char* script)
    {
        ScriptJob job;
        job.text = QString::fromUtf8(script);
        job.environment = std::make_shared<ScriptEnvironment>(QDir::tempPath(), nullptr);
        queue->add(std::move(job));
    }

    /// Runs the event loop until no script is left.
    void runAll()
    {
        EXPECT_TRUE(QTest::qWaitFor([this] { return !queue->isBusy(); }, patience));
    }

    /// What scripts have printed so far, joined by spaces.
    std::string printed()
    {
        const std::lock_guard lock(outputMutex);
        return output.join(QLatin1Char(' ')).toStdString();
    }

    /// Runs the event loop until scripts have printed this and perhaps more.
    bool waitForPrinted(const std::string& text)
    {
        return QTest::qWaitFor([&] { return printed().starts_with(text); }, patience);
    }

    std::string ended() const { return results.join(QLatin1Char('|')).toStdString(); }

private:
    void take(const QString& text)
    {
        const std::lock_guard lock(outputMutex);
        output += text;
    }

    std::mutex outputMutex;
    QStringList output;

protected:
    ScriptInterrupt interrupt;
    QStringList results;
    std::unique_ptr<ScriptQueue> queue;
};

inline std::string threadName(const testing::TestParamInfo<bool>& thread)
{
    return thread.param ? "OwnThread" : "GuiThread";
}
