// Image files that are as they should be: what is saved comes back.

#include "CxImageFormatManager.h"
#include "core/buffers/PicBufReference.h"
#include "support/FileSizeLimit.h"
#include "support/LogCapture.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <stdexcept>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

class ImageFile : public testing::Test
{
protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }

    static bool save(CxImageData& image, const QString& file)
    {
        const std::unique_ptr<CxImageFileSaver> saver(CxImageFormatManager::instance()->saverForFile(file));
        return saver && saver->saveImage(&image, nullptr);
    }

    static std::unique_ptr<CxImageData> load(const QString& file)
    {
        const std::unique_ptr<CxImageFileLoader> loader(CxImageFormatManager::instance()->loaderForFile(file));
        if (!loader || !loader->readFile())
            return nullptr;
        auto* frame = qobject_cast<CxImageData*>(loader->frameAt(0));
        return std::unique_ptr<CxImageData>(frame ? qobject_cast<CxImageData*>(frame->clone(nullptr, nullptr))
                                                  : nullptr);
    }

    /// Saves random pixels and expects the same back.
    void expectUnchanged(const QString& name, ExImageDataType type, unsigned channels, unsigned bpc = 0)
    {
        SCOPED_TRACE(name.toStdString() + " " + typeName(type) + " x " + std::to_string(channels));
        TestPicBuf source({19, 7, channels, type, 5, bpc});
        source.randomise(m_random);
        if (bpc)
            for (unsigned y = 0; y < 7; ++y)
                for (std::size_t i = 0; i < source.values(); ++i)
                    source.setBits(i, y, m_random() & ((1ULL << bpc) - 1));
        const auto image = source.image();
        ASSERT_TRUE(save(*image, path(name)));
        const auto loaded = load(path(name));
        ASSERT_NE(loaded, nullptr);
        const SxPicBuf& buffer = *loaded->picBuf();
        EXPECT_EQ(buffer.width, 19U);
        EXPECT_EQ(buffer.height, 7U);
        EXPECT_EQ(buffer.channels, channels);
        EXPECT_EQ(typeName(buffer.dataType), typeName(type));
        EXPECT_EQ(buffer.bpc, source.record.bpc);
        EXPECT_EQ(buffer.isColor, channels > 1);
        EXPECT_EQ(buffer.storageFormat, ExDataStorageFormat::Interleaved);
        EXPECT_EQ(TestPicBuf::pixelsOf(buffer), source.pixels());
    }

    std::mt19937_64 m_random{7};

private:
    QTemporaryDir m_folder;
};

TEST_F(ImageFile, EightBitsComeBackUnchangedInEveryLosslessFormat)
{
    for (const char* name : {"a.png", "a.tif", "a.tiff"})
        for (const unsigned channels : {1U, 3U, 4U})
            expectUnchanged(QString::fromLatin1(name), ExImageDataType::UInt8, channels);
    for (const char* name : {"a.bmp", "a.pgm", "a.ppm"})
        for (const unsigned channels : {1U, 3U})
            expectUnchanged(QString::fromLatin1(name), ExImageDataType::UInt8, channels);
}

TEST_F(ImageFile, SixteenBitsComeBackUnchanged)
{
    for (const char* name : {"a.png", "a.tif"})
        for (const unsigned channels : {1U, 3U, 4U})
            expectUnchanged(QString::fromLatin1(name), ExImageDataType::UInt16, channels);
    expectUnchanged(QStringLiteral("a.pgm"), ExImageDataType::UInt16, 1);
    expectUnchanged(QStringLiteral("a.ppm"), ExImageDataType::UInt16, 3);
}

TEST_F(ImageFile, FewerBitsInSixteenComeBackUnchangedAndKnown)
{
    for (const unsigned bpc : {10U, 12U, 15U}) {
        for (const char* name : {"a.png", "a.tif", "a.pgm"})
            expectUnchanged(QString::fromLatin1(name), ExImageDataType::UInt16, 1, bpc);
        for (const char* name : {"a.png", "a.tif", "a.ppm"})
            expectUnchanged(QString::fromLatin1(name), ExImageDataType::UInt16, 3, bpc);
        for (const char* name : {"a.png", "a.tif"})
            expectUnchanged(QString::fromLatin1(name), ExImageDataType::UInt16, 4, bpc);
    }
}

TEST_F(ImageFile, BitsThatTheValuesExceedAreNotNoted)
{
    TestPicBuf source({2, 1, 1, ExImageDataType::UInt16, 0, 12});
    source.setBits(0, 0, 5);
    source.setBits(1, 0, 4096);
    for (const char* name : {"a.png", "a.tif", "a.pgm"}) {
        ASSERT_TRUE(save(*source.image(), path(QString::fromLatin1(name))));
        const auto loaded = load(path(QString::fromLatin1(name)));
        ASSERT_NE(loaded, nullptr);
        EXPECT_EQ(loaded->picBuf()->bpc, 16U);
        EXPECT_EQ(TestPicBuf::pixelsOf(*loaded->picBuf()), source.pixels());
    }
}

TEST_F(ImageFile, OtherTypesAreStoredWhereEveryValueSurvives)
{
    struct Row {
        const char* name;
        ExImageDataType type;
        unsigned channels;
        std::uint64_t value;
        ExImageDataType stored; ///< None: refused
    };
    using Type = ExImageDataType;
    const Row rows[] = {
        {"a.png", Type::Int8, 1, 127, Type::UInt8},
        {"a.png", Type::Int16, 3, 0xFFFF, Type::None}, // -1
        {"a.png", Type::UInt32, 4, 65535, Type::UInt16},
        {"a.png", Type::UInt32, 1, 65536, Type::None},
        {"a.png", Type::Float, 1, 0x3F000000, Type::None}, // 0.5
        {"a.ppm", Type::Int64, 3, 40000, Type::UInt16},
        {"a.tif", Type::Int16, 3, 0xFFFF, Type::Float},
        {"a.tif", Type::UInt32, 1, 0xFFFFFFFF, Type::Double},
        {"a.tif", Type::UInt32, 3, 0xFFFFFFFF, Type::None},
        {"a.tif", Type::Int64, 1, ~0ULL, Type::Int8},
        {"a.tif", Type::UInt64, 1, (1ULL << 60) + 1, Type::None},
        {"a.tif", Type::Double, 3, 0x3FE0000000000000, Type::Float}, // 0.5
        {"a.tif", Type::Double, 3, 0x3FB999999999999A, Type::None},  // 0.1
        {"a.jpg", Type::Float, 1, 0x3F000000, Type::None},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.name) + " " + typeName(row.type) + " " + std::to_string(row.value));
        TestPicBuf source({3, 2, row.channels, row.type, 1});
        for (unsigned y = 0; y < 2; ++y)
            for (std::size_t i = 0; i < source.values(); ++i)
                source.setBits(i, y, row.value);
        const QString file = path(QString::fromLatin1(row.name));
        if (row.stored == Type::None) {
            const LogCapture log;
            EXPECT_FALSE(save(*source.image(), file));
            EXPECT_EQ(log.texts().size(), 1);
            continue;
        }
        ASSERT_TRUE(save(*source.image(), file));
        const auto loaded = load(file);
        ASSERT_NE(loaded, nullptr);
        EXPECT_EQ(typeName(loaded->picBuf()->dataType), typeName(row.stored));
        EXPECT_EQ(loaded->picBuf()->channels, row.channels);
        EXPECT_EQ(valueAt(*loaded->picBuf(), 0, 1), valueAt(source.record, 0, 1));
    }
}

TEST_F(ImageFile, DeepValuesBecomeBytesInPicturesForTheEye)
{
    TestPicBuf source({2, 1, 1, ExImageDataType::UInt16, 0, 12});
    source.setBits(0, 0, 4095);
    source.setBits(1, 0, 2048);
    ASSERT_TRUE(save(*source.image(), path(QStringLiteral("a.bmp"))));
    const auto loaded = load(path(QStringLiteral("a.bmp")));
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->picBuf()->row(0)[0], 255);
    EXPECT_EQ(loaded->picBuf()->row(0)[1], 128);
}

TEST_F(ImageFile, PackedColoursBecomeColours)
{
    TestPicBuf source({1, 1, 1, ExImageDataType::Packed565});
    source.setBits(0, 0, 0xF81F);
    for (const char* name : {"a.png", "a.tif", "a.bmp", "a.ppm"}) {
        ASSERT_TRUE(save(*source.image(), path(QString::fromLatin1(name))));
        const auto loaded = load(path(QString::fromLatin1(name)));
        ASSERT_NE(loaded, nullptr);
        EXPECT_EQ(TestPicBuf::pixelsOf(*loaded->picBuf()), (std::vector<std::uint8_t>{255, 0, 255}));
    }
}

TEST_F(ImageFile, TwoChannelsAreRefused)
{
    const LogCapture log;
    const TestPicBuf source({2, 2, 2});
    for (const char* name : {"a.png", "a.tif", "a.bmp", "a.ppm", "a.jpg"})
        EXPECT_FALSE(save(*source.image(), path(QString::fromLatin1(name))));
    EXPECT_EQ(log.texts().size(), 5);
}

TEST_F(ImageFile, FloatsComeBackUnchangedFromTiff)
{
    for (const unsigned channels : {1U, 3U, 4U})
        expectUnchanged(QStringLiteral("a.tiff"), ExImageDataType::Float, channels);
    expectUnchanged(QStringLiteral("a.tif"), ExImageDataType::Double, 1);
}

TEST_F(ImageFile, SignedValuesOfOneChannelComeBackUnchangedFromTiff)
{
    for (const auto type : {ExImageDataType::Int8, ExImageDataType::Int16, ExImageDataType::Int32})
        expectUnchanged(QStringLiteral("a.tif"), type, 1);
}

TEST_F(ImageFile, JpegComesBackNearly)
{
    TestPicBuf source({32, 16, 3});
    for (unsigned y = 0; y < 16; ++y)
        for (unsigned x = 0; x < 32; ++x)
            for (unsigned c = 0; c < 3; ++c)
                source.set<std::uint8_t>(x * 3 + c, y, std::uint8_t(c == 0 ? 250 : 10)); // pure blue
    ASSERT_TRUE(save(*source.image(), path(QStringLiteral("a.JPG"))));
    const auto loaded = load(path(QStringLiteral("a.JPG")));
    ASSERT_NE(loaded, nullptr);
    ASSERT_EQ(loaded->picBuf()->channels, 3U);
    EXPECT_NEAR(loaded->picBuf()->row(8)[30], 250, 6);
    EXPECT_NEAR(loaded->picBuf()->row(8)[31], 10, 6);
    EXPECT_NEAR(loaded->picBuf()->row(8)[32], 10, 6);
}

TEST_F(ImageFile, AlphaIsDroppedWhereTheFormatHasNone)
{
    TestPicBuf source({3, 2, 4});
    source.randomise(m_random);
    for (const char* name : {"a.bmp", "a.ppm"}) {
        ASSERT_TRUE(save(*source.image(), path(QString::fromLatin1(name))));
        const auto loaded = load(path(QString::fromLatin1(name)));
        ASSERT_NE(loaded, nullptr);
        ASSERT_EQ(loaded->picBuf()->channels, 3U);
        for (unsigned c = 0; c < 3; ++c)
            EXPECT_EQ(loaded->picBuf()->row(1)[3 + c], source.get<std::uint8_t>(4 + c, 1));
    }
}

TEST_F(ImageFile, ExtensionsCountInEitherLetterCase)
{
    auto* manager = CxImageFormatManager::instance();
    for (const QString& extension : manager->extensions()) {
        const QString name = QStringLiteral("x.") + extension;
        const std::unique_ptr<CxImageFileLoader> loader(manager->loaderForFile(name.toUpper()));
        const std::unique_ptr<CxImageFileSaver> saver(manager->saverForFile(name.toUpper()));
        EXPECT_NE(loader, nullptr) << qPrintable(name);
        EXPECT_NE(saver, nullptr) << qPrintable(name);
    }
}

TEST_F(ImageFile, OtherExtensionsHaveNoLoaderAndNoSaver)
{
    auto* manager = CxImageFormatManager::instance();
    for (const char* name : {"", "x", "x.", "x.gif", "png", "x.png.bak", ".", "/"}) {
        EXPECT_EQ(manager->loaderForFile(QString::fromLatin1(name)), nullptr) << name;
        EXPECT_EQ(manager->saverForFile(QString::fromLatin1(name)), nullptr) << name;
    }
}

TEST_F(ImageFile, NamesMayHoldAnyCharacter)
{
    expectUnchanged(QStringLiteral("Aufnahme \u00FC\u4E2D \"1\" %1.png"), ExImageDataType::UInt8, 1);
}

TEST_F(ImageFile, TheContentDecidesTheFormatThatIsRead)
{
    expectUnchanged(QStringLiteral("a.png"), ExImageDataType::UInt16, 3);
    ASSERT_TRUE(QFile::rename(path(QStringLiteral("a.png")), path(QStringLiteral("b.tif"))));
    const auto loaded = load(path(QStringLiteral("b.tif")));
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->picBuf()->dataType, ExImageDataType::UInt16);
}

TEST_F(ImageFile, ARefusedSaveLeavesTheOldFileAndOneLogLine)
{
    expectUnchanged(QStringLiteral("a.png"), ExImageDataType::UInt8, 1);
    TestPicBuf floats({4, 4, 1, ExImageDataType::Float});
    floats.randomise(m_random);
    CxImageData empty;
    {
        LogCapture log;
        EXPECT_FALSE(save(*floats.image(), path(QStringLiteral("a.png"))));
        EXPECT_EQ(log.texts().size(), 1);
        EXPECT_FALSE(save(empty, path(QStringLiteral("a.png"))));
        EXPECT_EQ(log.texts().size(), 2);
        EXPECT_FALSE(save(*floats.image(), path(QStringLiteral("no/such/folder/a.tif"))));
        EXPECT_EQ(log.texts().size(), 3);
    }
    const auto loaded = load(path(QStringLiteral("a.png")));
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->picBuf()->width, 19U);
    EXPECT_EQ(QDir(path(QString())).entryList(QDir::Files).size(), 1); // no temporary file is left either
}

TEST_F(ImageFile, AnInterruptedSaveLeavesTheOldFile)
{
    TestPicBuf source({300, 200, 3, ExImageDataType::UInt8});
    source.randomise(m_random);
    for (const char* extension : {"png", "tif", "jpg", "bmp", "ppm"}) {
        const QString file = path(QStringLiteral("a.") + QString::fromLatin1(extension));
        expectUnchanged(QStringLiteral("old.png"), ExImageDataType::UInt8, 1);
        QFile::remove(file);
        ASSERT_TRUE(QFile::rename(path(QStringLiteral("old.png")), file));
        {
            const FileSizeLimit limit(20000);
            const LogCapture log;
            EXPECT_FALSE(save(*source.image(), file)) << extension;
            ASSERT_EQ(log.texts().size(), 1);
            EXPECT_TRUE(log.texts()[0].contains(QStringLiteral("it would be larger than files may be")))
                << log.texts()[0].toStdString();
        }
        EXPECT_EQ(load(file)->picBuf()->width, 19U) << extension;
        EXPECT_EQ(QDir(path(QString())).entryList(QDir::Files | QDir::Hidden).size(), 1) << extension;
        const pid_t child = fork();
        if (child == 0) {
            const FileSizeLimit limit(20000, true); // the process is killed in the middle
            save(*source.image(), file);
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status)) << extension;
        EXPECT_EQ(load(file)->picBuf()->width, 19U) << extension;
        for (const QString& name : QDir(path(QString())).entryList(QDir::Files | QDir::Hidden))
            QFile::remove(path(name));
    }
}

TEST_F(ImageFile, AFolderOrAPipeIsNotReplaced)
{
    TestPicBuf source({4, 4, 1});
    const QString folder = path(QStringLiteral("folder.png"));
    const QString pipe = path(QStringLiteral("pipe.png"));
    ASSERT_TRUE(QDir().mkdir(folder));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const LogCapture log;
    EXPECT_FALSE(save(*source.image(), folder));
    EXPECT_FALSE(save(*source.image(), pipe));
    ASSERT_EQ(log.texts().size(), 2);
    EXPECT_TRUE(log.texts()[0].endsWith(QStringLiteral(": it is a folder"))) << log.texts()[0].toStdString();
    EXPECT_TRUE(log.texts()[1].endsWith(QStringLiteral(": it is not a regular file"))) << log.texts()[1].toStdString();
    struct stat status = {};
    ASSERT_EQ(stat(QFile::encodeName(pipe).constData(), &status), 0);
    EXPECT_TRUE(S_ISFIFO(status.st_mode));
}

/// An image whose pixels cannot be had.
class ThrowingImage final : public CxImageData
{
public:
    SxPicBuf* picBuf() override { throw std::runtime_error("the pixels are gone"); }
};

TEST_F(ImageFile, WhateverTheImageThrowsIsOneLogLine)
{
    ThrowingImage image;
    const LogCapture log;
    const QString file = path(QStringLiteral("x.png"));
    const std::unique_ptr<CxImageFileSaver> saver(CxImageFormatManager::instance()->saverForFile(file));
    EXPECT_NO_THROW(EXPECT_FALSE(saver->saveImage(&image, nullptr)));
    ASSERT_EQ(log.texts().size(), 1);
    EXPECT_TRUE(log.texts()[0].contains(QStringLiteral("the pixels are gone")));
    EXPECT_FALSE(QFile::exists(file));
}

TEST_F(ImageFile, ANullImageIsRefused)
{
    LogCapture log;
    const std::unique_ptr<CxImageFileSaver> saver(
        CxImageFormatManager::instance()->saverForFile(path(QStringLiteral("a.png"))));
    EXPECT_FALSE(saver->saveImage(nullptr, nullptr));
    EXPECT_EQ(log.texts().size(), 1);
}

} // namespace
