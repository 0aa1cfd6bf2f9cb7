// BMP, PGM and PPM files that are read and written without the codecs: they are the same as with them.

#include "CxImageFormatManager.h"
#include "core/buffers/PicBufReference.h"
#include "support/LogCapture.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QtEndian>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<uchar>;

class PlainImageFile : public testing::Test
{
protected:
    QString path(const char* extension) const
    {
        return m_folder.filePath(QLatin1String("a.") + QLatin1String(extension));
    }

    Bytes random(std::size_t count)
    {
        Bytes bytes(count);
        for (uchar& byte : bytes)
            byte = uchar(m_random());
        return bytes;
    }

    std::unique_ptr<CxImageData> load(const Bytes& file)
    {
        QFile target(path("bmp")); // the content decides
        EXPECT_TRUE(target.open(QIODevice::WriteOnly));
        target.write(reinterpret_cast<const char*>(file.data()), qint64(file.size()));
        target.close();
        const std::unique_ptr<CxImageFileLoader> loader(CxImageFormatManager::instance()->loaderForFile(path("bmp")));
        if (!loader->readFile())
            return nullptr;
        auto* frame = qobject_cast<CxImageData*>(loader->frameAt(0));
        return std::unique_ptr<CxImageData>(frame ? qobject_cast<CxImageData*>(frame->clone(nullptr, nullptr))
                                                  : nullptr);
    }

    /// Expects the pixels that the decoder finds in a file.
    void expectDecoded(const Bytes& file)
    {
        const cv::Mat expected = cv::imdecode(file, cv::IMREAD_UNCHANGED);
        const auto image = load(file);
        ASSERT_EQ(image != nullptr, !expected.empty());
        if (!image)
            return;
        const SxPicBuf& buffer = *image->picBuf();
        ASSERT_EQ(int(buffer.width), expected.cols);
        ASSERT_EQ(int(buffer.height), expected.rows);
        ASSERT_EQ(int(buffer.channels), expected.channels());
        ASSERT_EQ(buffer.dataType, expected.depth() == CV_8U ? ExImageDataType::UInt8 : ExImageDataType::UInt16);
        EXPECT_EQ(buffer.isColor, buffer.channels > 1);
        EXPECT_EQ(buffer.lineStride % 16, 0U);
        for (std::uint32_t y = 0; y < buffer.height; ++y)
            ASSERT_EQ(std::memcmp(buffer.row(y), expected.ptr(int(y)), buffer.rowBytes()), 0) << "row " << y;
    }

    std::mt19937 m_random{11};
    std::mt19937_64 m_random64{12};

private:
    QTemporaryDir m_folder;
};

struct Bmp {
    int width = 5;
    int height = 3;
    unsigned bits = 8;
    unsigned info = 40;
    unsigned used = 0;
    unsigned compression = 0;
    unsigned gap = 0; ///< bytes before the pixels
    bool colours = false;
    bool otherGreys = false;
};

Bytes bmpOf(const Bmp& bmp, const Bytes& random)
{
    const unsigned entries = bmp.bits != 8 ? 0 : bmp.used ? bmp.used : 256;
    const std::size_t begin = 14 + bmp.info + 4 * entries + bmp.gap;
    const std::size_t step = (std::size_t(bmp.width) * bmp.bits + 31) / 32 * 4;
    Bytes file(begin + step * std::size_t(std::abs(bmp.height)));
    const auto put = [&](std::size_t at, auto number) { qToLittleEndian(number, file.data() + at); };
    file[0] = 'B';
    file[1] = 'M';
    put(2, quint32(file.size()));
    put(10, quint32(begin));
    put(14, quint32(bmp.info));
    put(18, qint32(bmp.width));
    put(22, qint32(bmp.height));
    put(26, quint16(1));
    put(28, quint16(bmp.bits));
    put(30, quint32(bmp.compression));
    put(46, quint32(bmp.used));
    for (unsigned i = 0; i < entries; ++i)
        for (unsigned c = 0; c < 3; ++c)
            file[14 + bmp.info + 4 * i + c] = uchar(bmp.otherGreys ? 255 - i : bmp.colours && c == 1 ? i / 2 : i);
    for (std::size_t i = begin; i < file.size(); ++i)
        file[i] = random[i % random.size()];
    return file;
}

TEST_F(PlainImageFile, EveryKindOfBmpIsReadAsTheDecoderDoes)
{
    const Bytes noise = random(5003);
    int kinds = 0;
    for (const unsigned bits : {8U, 24U, 32U, 4U, 1U})
        for (const int width : {1, 2, 3, 4, 5, 16, 33})
            for (const int height : {1, 4, -1, -4})
                for (const unsigned info : {40U, 108U, 124U})
                    for (const unsigned gap : {0U, 6U})
                        for (const int palette : {0, 1, 2}) {
                            Bmp bmp{.width = width, .height = height, .bits = bits, .info = info, .gap = gap};
                            bmp.colours = palette == 1;
                            bmp.otherGreys = palette == 2;
                            SCOPED_TRACE(testing::Message() << bits << " bits, " << width << " x " << height << ", "
                                                            << info << ", " << gap << ", " << palette);
                            expectDecoded(bmpOf(bmp, noise));
                            ++kinds;
                        }
    EXPECT_EQ(kinds, 5 * 7 * 4 * 3 * 2 * 3);
}

TEST_F(PlainImageFile, ABmpWithAShortOrLongPaletteIsReadAsTheDecoderDoes)
{
    const LogCapture log;
    const Bytes noise = random(997);
    for (const unsigned used : {1U, 2U, 16U, 255U, 256U, 257U, 300U})
        for (const bool other : {false, true}) {
            SCOPED_TRACE(used);
            expectDecoded(bmpOf({.used = used, .otherGreys = other}, noise));
        }
}

TEST_F(PlainImageFile, ACompressedBmpIsLeftToTheDecoder)
{
    const LogCapture log;
    const Bytes noise = random(997);
    for (const unsigned compression : {1U, 2U, 3U, 4U})
        for (const unsigned bits : {8U, 24U}) {
            SCOPED_TRACE(compression);
            expectDecoded(bmpOf({.bits = bits, .compression = compression}, noise));
        }
}

TEST_F(PlainImageFile, AnymapsAreReadAsTheDecoderDoes)
{
    const LogCapture log;
    for (const char* kind : {"P5", "P6", "P2", "P3", "P4", "P1"})
        for (const char* between : {" ", "\n", "\r\n", "\t \n", "\n# a note\n"})
            for (const int width : {1, 2, 7, 8, 33})
                for (const int maximum : {1, 100, 255, 256, 1000, 4095, 65535}) {
                    SCOPED_TRACE(testing::Message()
                                 << kind << " " << width << " " << maximum << " " << int(between[0]));
                    std::string header = std::string(kind) + between + std::to_string(width) + between + "3";
                    if (kind[1] != '1' && kind[1] != '4')
                        header += between + std::to_string(maximum);
                    header += '\n';
                    Bytes file(header.begin(), header.end());
                    if (kind[1] >= '4') {
                        const Bytes noise = random(std::size_t(width) * 3 * 3 * 2);
                        file.insert(file.end(), noise.begin(), noise.end());
                    } else {
                        for (int i = 0; i < width * 9; ++i)
                            for (const char digit :
                                 std::to_string(i % (maximum + 1) % (kind[1] == '1' ? 2 : 65536)) + " ")
                                file.push_back(uchar(digit));
                    }
                    expectDecoded(file);
                }
}

TEST_F(PlainImageFile, WhatIsSavedIsTheFileOfTheEncoder)
{
    for (const char* extension : {"bmp", "pgm", "ppm"})
        for (const ExImageDataType type : {ExImageDataType::UInt8, ExImageDataType::UInt16})
            for (const unsigned channels : {1U, 3U, 4U})
                for (const unsigned width : {1U, 2U, 3U, 4U, 5U, 16U, 31U, 64U})
                    for (const unsigned height : {1U, 5U})
                        for (const unsigned gap : {0U, 5U}) {
                            const bool isBmp = QLatin1String(extension) == QLatin1String("bmp");
                            if (isBmp && type == ExImageDataType::UInt16) // saved as 8 bits
                                continue;
                            SCOPED_TRACE(testing::Message() << extension << " " << typeName(type) << " " << channels
                                                            << " " << width << " x " << height << " " << gap);
                            TestPicBuf source({width, height, channels, type, gap, 0});
                            source.randomise(m_random64);
                            const auto image = source.image();
                            const std::unique_ptr<CxImageFileSaver> saver(
                                CxImageFormatManager::instance()->saverForFile(path(extension)));
                            ASSERT_TRUE(saver->saveImage(image.get(), nullptr));
                            const SxPicBuf& buffer = *image->picBuf();
                            cv::Mat pixels(int(height), int(width),
                                           CV_MAKETYPE(type == ExImageDataType::UInt8 ? CV_8U : CV_16U, int(channels)));
                            for (unsigned y = 0; y < height; ++y)
                                std::memcpy(pixels.ptr(int(y)), buffer.row(y), buffer.rowBytes());
                            if (channels == 4)
                                cv::cvtColor(pixels, pixels, cv::COLOR_BGRA2BGR);
                            Bytes expected;
                            cv::imencode(isBmp ? ".bmp" : channels == 1 ? ".pgm" : ".ppm", pixels, expected);
                            QFile saved(path(extension));
                            ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
                            const QByteArray bytes = saved.readAll();
                            EXPECT_TRUE(Bytes(bytes.begin(), bytes.end()) == expected);
                        }
}

} // namespace
