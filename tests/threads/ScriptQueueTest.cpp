#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "ScriptsTest.h"

namespace {

using ScriptQueueTest = ScriptsTest;

INSTANTIATE_TEST_SUITE_P(On, ScriptQueueTest, testing::Bool(), threadName);

TEST_P(ScriptQueueTest, NamesTheLanguageOfThePlugin)
{
    EXPECT_EQ(queue->language(), QStringLiteral("Fake 1"));
}

TEST_P(ScriptQueueTest, RunsScriptsInOrderAndReportsTheResultOfEach)
{
    QStringList events;
    QObject::connect(queue.get(), &ScriptQueue::runStarted, [&] { events += QStringLiteral("start"); });
    QObject::connect(queue.get(), &ScriptQueue::runEnded, [&] { events += QStringLiteral("end"); });
    QObject::connect(queue.get(), &ScriptQueue::becameIdle, [&] { events += QStringLiteral("idle"); });
    add("print 1\nprint 2\n");
    add("fail broken\n");
    add("print 3\n");
    EXPECT_TRUE(queue->isBusy());
    if (!GetParam()) {
        EXPECT_EQ(printed(), "") << "a script starts from the event loop";
    }
    runAll();
    EXPECT_EQ(printed(), "1 2 3");
    EXPECT_EQ(ended(), "|broken|");
    EXPECT_EQ(events.join(QLatin1Char(' ')), QStringLiteral("start end start end start end idle"));
}

TEST_P(ScriptQueueTest, StartsAScriptThatIsAddedDuringARunAfterThatRun)
{
    QMetaObject::Connection connection;
    connection = QObject::connect(queue.get(), &ScriptQueue::runStarted, &interrupt, [this, &connection] {
        QObject::disconnect(connection);
        add("print later");
    });
    add("pause 0.05\nprint first");
    runAll();
    EXPECT_EQ(printed(), "first later");
}

TEST_P(ScriptQueueTest, PublishesImagesBetweenRuns)
{
    SxPicBuf buffer;
    CxPicBufAPI::AllocPicBufFromHeap(buffer, 6, 4, 1, ExImageDataType::UInt8, 0, 0, 8, ExDataStorageFormat::Interleaved,
                                     ExColorFilterArray::None, false, true, 0);
    auto image = std::make_shared<CxImageData>();
    image->setPicBuf(buffer);
    add("print started");
    runAll();
    queue->publish(QStringLiteral("dark"), std::move(image));
    add("print again");
    runAll();
    EXPECT_EQ(ended(), "|dark 6x4\n");
}

TEST_P(ScriptQueueTest, DropsWaitingScriptsWhenCleared)
{
    add("pause 0.01\nprint first");
    add("print never");
    queue->clear();
    runAll();
    EXPECT_EQ(printed(), "first");
}

TEST_P(ScriptQueueTest, WaitsForTheRunningScriptWhenItGoes)
{
    for (int i = 0; i < 20; ++i) {
        makeQueue();
        add("print x");
        add("print never");
    }
    queue.reset();
    // On a separate thread the first script of each queue had started. On the GUI thread the event loop never ran.
    EXPECT_EQ(QString::fromStdString(printed()).count(QLatin1Char('x')), GetParam() ? 20 : 0);
    EXPECT_EQ(printed().find("never"), std::string::npos);
}

TEST_P(ScriptQueueTest, CopesWithManyShortScripts)
{
    for (int i = 0; i < 200; ++i)
        add("print .\nfail x");
    runAll();
    EXPECT_EQ(results.size(), 200);
    EXPECT_EQ(results.join(QString()), QString(200, QLatin1Char('x')));
}

} // namespace
