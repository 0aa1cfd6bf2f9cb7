// Image files that are not as they should be: one log line, no image, no crash.

#include "CxImageFormatManager.h"
#include "core/buffers/TestPicBuf.h"
#include "support/LogCapture.h"
#include "support/StandardErrorCapture.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

class DamagedImageFile : public testing::TestWithParam<const char*>
{
protected:
    /// Loads a file with the given content; `logged` holds the lines of the log afterwards.
    bool loads(const QByteArray& content, const char* extension)
    {
        const QString path = m_folder.filePath(QStringLiteral("x.") + QString::fromLatin1(extension));
        QFile::remove(path); // rewriting a file in place waits for the disk
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        return loadsFile(path);
    }

    bool loadsFile(const QString& path)
    {
        const LogCapture log;
        const StandardErrorCapture libraries;
        const std::unique_ptr<CxImageFileLoader> loader(CxImageFormatManager::instance()->loaderForFile(path));
        const bool loaded = loader->readFile();
        EXPECT_EQ(loaded, loader->frameAt(0) != nullptr);
        logged = log.texts();
        EXPECT_LE(logged.size(), 1);
        EXPECT_TRUE(loaded || logged.size() == 1);
        // A picture may open although some of its pixels are lost.
        const bool warned = logged.value(0).contains(QStringLiteral("may be wrong"));
        EXPECT_TRUE(!loaded || logged.isEmpty() || warned) << logged.value(0).toStdString();
        EXPECT_EQ(libraries.text(), "");
        return loaded;
    }

    /// A healthy file of the format.
    QByteArray healthy(const char* extension, ExImageDataType type, unsigned channels)
    {
        TestPicBuf source({40, 30, channels, type});
        std::mt19937_64 random(3);
        source.randomise(random);
        const QString path = m_folder.filePath(QStringLiteral("healthy.") + QString::fromLatin1(extension));
        const std::unique_ptr<CxImageFileSaver> saver(CxImageFormatManager::instance()->saverForFile(path));
        EXPECT_TRUE(saver->saveImage(source.image().get(), nullptr));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    QStringList logged; ///< what the latest load wrote to the log
    QTemporaryDir m_folder;
};

TEST_P(DamagedImageFile, TruncatedAnywhereGivesNoImage)
{
    for (const unsigned channels : {1U, 3U}) {
        const QByteArray whole = healthy(GetParam(), ExImageDataType::UInt8, channels);
        ASSERT_TRUE(loads(whole, GetParam()));
        for (qsizetype length = 0; length < whole.size(); length += length < 200 ? 1 : 61)
            EXPECT_FALSE(loads(whole.left(length), GetParam())) << length << " of " << whole.size();
        EXPECT_FALSE(loads(whole.left(whole.size() - 1), GetParam()));
    }
}

TEST_P(DamagedImageFile, FlippedBytesNeverCrash)
{
    std::mt19937_64 random(5);
    const QByteArray whole = healthy(GetParam(), ExImageDataType::UInt8, 3);
    for (int round = 0; round < 600; ++round) {
        QByteArray broken = whole;
        // The header is short, and most of what can go wrong stands in it.
        const auto range = std::uint64_t(round % 2 ? broken.size() : std::min<qsizetype>(broken.size(), 64));
        for (std::uint64_t flips = 1 + random() % 3; flips > 0; --flips)
            broken[qsizetype(random() % range)] = char(random());
        loads(broken, GetParam());
    }
    if (QByteArray(GetParam()) == "tif") { // its header stands at the end
        for (int round = 0; round < 600; ++round) {
            QByteArray broken = whole;
            broken[broken.size() - 1 - qsizetype(random() % 220)] = char(random());
            loads(broken, GetParam());
        }
    }
}

TEST_P(DamagedImageFile, FlippedBytesAroundTheNotedDepthNeverCrash)
{
    std::mt19937_64 random(6);
    TestPicBuf source({6, 4, 3, ExImageDataType::UInt16, 0, 12});
    for (unsigned y = 0; y < 4; ++y)
        for (std::size_t i = 0; i < source.values(); ++i)
            source.setBits(i, y, random() & 0xFFF);
    const QString path = m_folder.filePath(QStringLiteral("deep.") + QString::fromLatin1(GetParam()));
    const std::unique_ptr<CxImageFileSaver> saver(CxImageFormatManager::instance()->saverForFile(path));
    ASSERT_TRUE(saver->saveImage(source.image().get(), nullptr));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray whole = file.readAll();
    for (int round = 0; round < 800; ++round) {
        QByteArray broken = whole;
        broken[qsizetype(random() % std::uint64_t(broken.size()))] = char(random());
        loads(broken, GetParam());
    }
}

TEST_P(DamagedImageFile, RandomBytesBehindTheSignatureNeverCrash)
{
    std::mt19937_64 random(11);
    const QByteArray whole = healthy(GetParam(), ExImageDataType::UInt8, 1);
    for (int round = 0; round < 200; ++round) {
        QByteArray noise = whole.left(8 + qsizetype(random() % 40));
        for (std::uint64_t i = random() % 400; i > 0; --i)
            noise += char(random());
        loads(noise, GetParam());
    }
}

INSTANTIATE_TEST_SUITE_P(Format, DamagedImageFile, testing::Values("png", "tif", "jpg", "bmp", "ppm"),
                         [](const auto& row) { return std::string(row.param); });

using BadImageFile = DamagedImageFile;

TEST_F(BadImageFile, AnEmptyFileGivesNoImage)
{
    EXPECT_FALSE(loads(QByteArray(), "png"));
    EXPECT_TRUE(logged.value(0).contains(QStringLiteral("is empty")));
}

TEST_F(BadImageFile, AMissingFileGivesNoImage)
{
    EXPECT_FALSE(loadsFile(m_folder.filePath(QStringLiteral("missing.png"))));
    EXPECT_TRUE(logged.value(0).contains(QStringLiteral("does not exist")));
}

TEST_F(BadImageFile, AFolderAndADeviceGiveNoImage)
{
    QDir(m_folder.path()).mkdir(QStringLiteral("folder.png"));
    EXPECT_FALSE(loadsFile(m_folder.filePath(QStringLiteral("folder.png"))));
    const QString link = m_folder.filePath(QStringLiteral("endless.png"));
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/zero"), link));
    EXPECT_FALSE(loadsFile(link));
}

TEST_F(BadImageFile, AJpegWithLostPixelsOpensWithAWarning)
{
    QByteArray jpeg = healthy("jpg", ExImageDataType::UInt8, 3);
    EXPECT_TRUE(loads(jpeg, "jpg"));
    EXPECT_EQ(logged.size(), 0);
    jpeg.remove(jpeg.size() / 2, 200);
    EXPECT_TRUE(loads(jpeg, "jpg"));
    ASSERT_EQ(logged.size(), 1);
    EXPECT_TRUE(logged[0].contains(QStringLiteral("is damaged"))) << logged[0].toStdString();
}

TEST_F(BadImageFile, OtherThreadsKeepStandardError)
{
    QByteArray png = healthy("png", ExImageDataType::UInt8, 1);
    png[png.size() / 2] = char(png[png.size() / 2] ^ 0x55);
    const QString path = m_folder.filePath(QStringLiteral("broken.png"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(png);
    file.close();
    const LogCapture log;
    const StandardErrorCapture all;
    std::atomic<bool> ends = false;
    std::size_t written = 0;
    std::thread other([&] {
        while (!ends && written < 100000)
            written += std::size_t(std::max<ssize_t>(write(STDERR_FILENO, "x", 1), 0));
    });
    for (int round = 0; round < 100; ++round) {
        const std::unique_ptr<CxImageFileLoader> loader(CxImageFormatManager::instance()->loaderForFile(path));
        EXPECT_FALSE(loader->readFile());
    }
    ends = true;
    other.join();
    EXPECT_GT(written, 0U);
    EXPECT_EQ(all.text(), std::string(written, 'x'));
}

TEST_F(BadImageFile, TextGivesNoImage)
{
    EXPECT_FALSE(loads("This is not a picture.", "jpg"));
}

TEST_F(BadImageFile, AHugePngHeaderIsRefusedBeforeMemoryIsTaken)
{
    QByteArray png = healthy("png", ExImageDataType::UInt8, 1);
    png.replace(16, 8, QByteArray::fromHex("7fffffff7fffffff"));
    EXPECT_FALSE(loads(png, "png"));
    EXPECT_TRUE(logged.value(0).contains(QStringLiteral("2147483647 x 2147483647")));
    png.replace(16, 8, QByteArray::fromHex("0000700000007000")); // within the limits, but not in so few bytes
    EXPECT_FALSE(loads(png, "png"));
    EXPECT_TRUE(logged.value(0).contains(QStringLiteral("but the file has only")));
}

TEST_F(BadImageFile, AHugeAnymapHeaderIsRefused)
{
    EXPECT_FALSE(loads("P5\n999999999999 999999999999\n255\nabc", "pgm"));
    EXPECT_FALSE(loads("P6 30000 30000 65535\nabc", "ppm"));
    EXPECT_FALSE(loads("P2 0 0 255\n", "pgm"));
    EXPECT_FALSE(loads("P2 2 2 70000 1 2 3 4\n", "pgm"));
    EXPECT_FALSE(loads("P5", "pgm"));
}

TEST_F(BadImageFile, AHugeBitmapHeaderIsRefused)
{
    QByteArray bmp = healthy("bmp", ExImageDataType::UInt8, 3);
    bmp.replace(18, 8, QByteArray::fromHex("ffffff7fffffff7f"));
    EXPECT_FALSE(loads(bmp, "bmp"));
    bmp.replace(18, 8, QByteArray::fromHex("2800000000000080"));
    EXPECT_FALSE(loads(bmp, "bmp"));
}

} // namespace
