#include "process/SoundPlayer.h"

#include "support/LogCapture.h"
#include "support/OtherThread.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryFile>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace {

TEST(Sounds, AMissingFileIsOneLogLine)
{
    const LogCapture log;
    SoundPlayer player;
    player.play(QStringLiteral("/nowhere/bell.wav"));
    EXPECT_EQ(log.texts(), QStringList({QStringLiteral("Cannot play the sound /nowhere/bell.wav: no such file")}));
}

TEST(Sounds, AFileThatIsNoSoundIsOneLogLine)
{
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    file.write("no sound");
    file.close();
    const LogCapture log;
    SoundPlayer player;
    player.play(file.fileName());
    const auto ours = [&log] { return log.texts().filter(QStringLiteral("Cannot play the sound")); };
    EXPECT_TRUE(QTest::qWaitFor([&ours] { return !ours().isEmpty(); }));
    EXPECT_EQ(ours().size(), 1);
}

TEST(Sounds, MayBeAskedForOnAnyThread)
{
    const LogCapture log;
    SoundPlayer player;
    onOtherThread([&player] { player.play(QStringLiteral("/nowhere/bell.wav")); });
    EXPECT_TRUE(log.texts().isEmpty());
    QCoreApplication::processEvents();
    EXPECT_EQ(log.texts().size(), 1);
}

} // namespace
