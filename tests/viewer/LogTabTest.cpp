// The log beside the output of scripts.

#include "process/LogRecords.h"
#include "workshop/OutputPane.h"
#include "workshop/ScriptConsole.h"

#include <QtCore/QDebug>
#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTabWidget>

#include <gtest/gtest.h>

#include <atomic>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

class LogTab : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(LogRecords::writeToFile(QStringLiteral("/dev/null")), QString());
        console = new ScriptConsole(&window);
        window.addDockWidget(Qt::BottomDockWidgetArea, console);
        window.show();
        tabs = console->findChild<QTabWidget*>();
        ASSERT_NE(tabs, nullptr);
        ASSERT_EQ(tabs->count(), 2);
        log = console->findChild<QPlainTextEdit*>(QStringLiteral("log"));
        ASSERT_NE(log, nullptr);
    }
    void TearDown() override { qInstallMessageHandler(nullptr); }

    /// The lines of the log without their times.
    QStringList lines()
    {
        QStringList result;
        const QRegularExpression time(QStringLiteral("^\\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d  "));
        for (QString line : log->toPlainText().split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            if (!line.startsWith(QLatin1Char(' '))) {
                EXPECT_TRUE(time.match(line).hasMatch()) << line.toStdString();
            }
            result += line.remove(time);
        }
        return result;
    }

    bool waitForLines(int count)
    {
        return QTest::qWaitFor([&] { return lines().size() >= count; }, 10000);
    }

    std::string title() const { return tabs->tabText(1).toStdString(); }

    QMainWindow window;
    ScriptConsole* console = nullptr;
    QTabWidget* tabs = nullptr;
    QPlainTextEdit* log = nullptr;
};

TEST_F(LogTab, ShowsWarningsAndCriticalRecordsWithTheirTimeAndSeverity)
{
    EXPECT_TRUE(console->isHidden());
    qDebug("a detail");
    qInfo("a note");
    qWarning("a warning");
    qCritical() << QStringLiteral("a text");
    const QLoggingCategory category("camera");
    qCWarning(category, "of a category");
    qWarning("two\nlines");
    ASSERT_TRUE(waitForLines(5));
    EXPECT_EQ(lines().join(QLatin1Char('\n')).toStdString(), "warning   a warning\n"
                                                             "critical  \"a text\"\n"
                                                             "warning   camera: of a category\n"
                                                             "warning   two\n"
                                                             "                        lines");
    EXPECT_FALSE(console->isHidden());
}

TEST_F(LogTab, IsInFrontIfThereIsNothingElseToShow)
{
    qWarning("a warning");
    ASSERT_TRUE(waitForLines(1));
    EXPECT_EQ(tabs->currentIndex(), 1);
    EXPECT_EQ(title(), "Log");
}

TEST_F(LogTab, HasAMarkWhileThereAreUnseenRecords)
{
    console->appendErrors(QStringLiteral("an error\n"));
    EXPECT_EQ(tabs->currentIndex(), 0);
    EXPECT_EQ(title(), "Log");
    EXPECT_TRUE(tabs->tabIcon(1).isNull());
    qWarning("one");
    qCritical("two\nlines");
    ASSERT_TRUE(QTest::qWaitFor([this] { return title() == "Log (2 new)"; })) << title();
    EXPECT_FALSE(tabs->tabIcon(1).isNull());
    EXPECT_EQ(tabs->currentIndex(), 0);
    tabs->setCurrentIndex(1);
    EXPECT_EQ(title(), "Log");
    EXPECT_TRUE(tabs->tabIcon(1).isNull());
    qWarning("seen at once");
    ASSERT_TRUE(waitForLines(4));
    EXPECT_EQ(title(), "Log");
}

TEST_F(LogTab, TakesRecordsOfOtherThreadsAndKeepsALimitedNumberOfLines)
{
    constexpr int each = 10000;
    const auto logALot = [] {
        for (int i = 0; i < each; ++i)
            qWarning("record %d", i);
    };
    {
        const std::jthread first(logALot);
        const std::jthread second(logALot);
    }
    const QString last = QStringLiteral("record %1\n").arg(each - 1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return log->toPlainText().endsWith(last); }, 20000));
    EXPECT_LE(log->blockCount(), OutputPane::mostLines);
    const auto* dropped = log->parentWidget()->findChild<QLabel*>(QStringLiteral("droppedLines"));
    ASSERT_NE(dropped, nullptr);
    EXPECT_FALSE(dropped->isHidden());
    const QString number = dropped->text().section(QLatin1Char(' '), 0, 0).remove(QLatin1Char(','));
    // The last block is empty: the text ends with a line feed.
    EXPECT_EQ(number.toInt() + log->blockCount() - 1, 2 * each) << dropped->text().toStdString();
}

TEST_F(LogTab, CanBeCopied)
{
    qCritical("copy me");
    ASSERT_TRUE(waitForLines(1));
    QTest::keySequence(log, QKeySequence::SelectAll);
    QTest::keySequence(log, QKeySequence::Copy);
    EXPECT_TRUE(QGuiApplication::clipboard()->text().contains(QStringLiteral("critical  copy me")));
}

TEST_F(LogTab, StaysWhereAReaderHasScrolled)
{
    for (int i = 0; i < 500; ++i)
        qWarning("record %d", i);
    ASSERT_TRUE(waitForLines(500));
    const QScrollBar* bar = log->verticalScrollBar();
    EXPECT_TRUE(QTest::qWaitFor([bar] { return bar->value() == bar->maximum(); }));
    log->verticalScrollBar()->setValue(10);
    qWarning("record 500");
    ASSERT_TRUE(waitForLines(501));
    EXPECT_NEAR(bar->value(), 10, 1); // a line that is only partly in sight counts or not
    log->verticalScrollBar()->setValue(bar->maximum());
    for (int i = 501; i < 520; ++i)
        qWarning("record %d", i);
    ASSERT_TRUE(waitForLines(520));
    EXPECT_TRUE(QTest::qWaitFor([bar] { return bar->value() == bar->maximum(); }));
}

TEST_F(LogTab, LeavesTheRecordsInTheLogFile)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("log.txt"));
    ASSERT_EQ(LogRecords::writeToFile(path), QString());
    qWarning("kept");
    ASSERT_TRUE(waitForLines(1));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().toStdString(), "kept\n");
}

TEST_F(LogTab, DoesNotHoldUpAForkedChild)
{
    // Another thread is inside the listener when the process forks.
    std::atomic<bool> isInside = false;
    std::atomic<bool> mayLeave = false;
    LogRecords::setListener([&](QtMsgType, const QString&) {
        isInside = true;
        while (!mayLeave)
            QThread::msleep(1);
    });
    std::thread logs([] { qWarning("parent"); });
    while (!isInside)
        QThread::msleep(1);
    const pid_t child = fork();
    if (child == 0) {
        alarm(10); // ends a child that waits for ever
        qWarning("child");
        _exit(7);
    }
    int status = 0;
    waitpid(child, &status, 0);
    mayLeave = true;
    logs.join();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 7) << status;
}

TEST_F(LogTab, IsNotToldWhatIsLoggedMeanwhileOrAfterTheEnd)
{
    int told = 0;
    LogRecords::setListener([&](QtMsgType, const QString&) {
        ++told;
        qWarning("from the listener");
    });
    qWarning("one");
    EXPECT_EQ(told, 1);
    LogRecords::setListener({});
    qWarning("two");
    EXPECT_EQ(told, 1);
    delete console;
    qWarning("nobody listens");
}

} // namespace
