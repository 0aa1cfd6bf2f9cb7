#include "PlainImageFile.h"

#include "AnymapHeader.h"
#include "ByteReader.h"
#include "storage/FileReplacement.h"

#include <QtCore/QFile>
#include <QtCore/QtEndian>

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cstring>
#include <limits>
#include <numeric>
#include <optional>
#include <vector>

namespace {

using Layout = PlainImageLayout;
using Greys = Layout::Greys;

constexpr qsizetype bmpHeader = 14;
constexpr qsizetype bmpInfo = 40;
constexpr qsizetype bmpPalette = 4 * 256;

/// Files are read and written in pieces that stay in the processor's cache.
constexpr qsizetype pieceBytes = 256 << 10;

Greys everyGrey()
{
    Greys greys = {};
    std::iota(greys.begin(), greys.end(), uchar(0));
    return greys;
}

/// The greys of a palette. Nothing if it has colours.
std::optional<Greys> greysOf(const QByteArray& file, qsizetype begin, std::uint32_t count)
{
    Greys greys = {}; // missing entries are black
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto* entry = reinterpret_cast<const uchar*>(file.constData()) + begin + 4 * qsizetype(i);
        if (entry[0] != entry[1] || entry[0] != entry[2])
            return std::nullopt;
        greys[i] = entry[0];
    }
    return greys;
}

std::optional<Layout> bmpLayout(const QByteArray& file)
{
    const ByteReader reader(file, ByteReader::LittleEndian);
    if (!reader.has(0, bmpHeader + bmpInfo))
        return std::nullopt;
    const std::uint32_t info = reader.u32(14);
    const std::uint32_t bits = reader.u16(28);
    const bool compressed = reader.u32(30) != 0;
    const std::uint32_t used = reader.u32(46) != 0 ? reader.u32(46) : 256;
    const qsizetype palette = bmpHeader + qsizetype(info);
    if (info < bmpInfo || compressed || (bits != 8 && bits != 24) || used > 256)
        return std::nullopt;
    Layout layout;
    const qsizetype paletteEnd = palette + (bits == 8 ? 4 * qsizetype(used) : 0);
    layout.begin = qsizetype(reader.u32(10));
    if (layout.begin < paletteEnd || paletteEnd > file.size())
        return std::nullopt;
    layout.width = reader.u32(18);
    const auto height = std::int32_t(reader.u32(22));
    layout.height = height < 0 ? 0 - std::uint32_t(height) : std::uint32_t(height);
    layout.bottomUp = height > 0;
    layout.channels = bits / 8;
    layout.step = (qsizetype(layout.width) * layout.channels + 3) / 4 * 4;
    if (bits == 8) {
        const std::optional<Greys> greys = greysOf(file, palette, used);
        if (!greys)
            return std::nullopt;
        if (*greys != everyGrey())
            layout.greys = greys;
    }
    return layout;
}

std::optional<Layout> anymapLayout(const QByteArray& file)
{
    if (file[1] != '5' && file[1] != '6')
        return std::nullopt;
    AnymapHeader header(file);
    Layout layout;
    layout.width = std::uint32_t(header.number());
    layout.height = std::uint32_t(header.number());
    const std::uint64_t maximum = header.number();
    // The decoder knows where a comment ends, and a header without an end may go on.
    if (header.end() == file.size() || file.left(header.end()).contains('#'))
        return std::nullopt;
    layout.type = maximum > 255 ? ExImageDataType::UInt16 : ExImageDataType::UInt8;
    layout.redFirst = file[1] == '6';
    layout.channels = layout.redFirst ? 3 : 1;
    layout.begin = header.end() + 1;
    layout.step = qsizetype(layout.width) * layout.channels * (maximum > 255 ? 2 : 1);
    return layout;
}

/// Exchanges the first and the third of three channels, in place or from elsewhere.
template<typename Value>
void exchangeRedAndBlue(const Value* from, Value* to, std::uint32_t pixels)
{
    for (std::uint32_t i = 0; i < pixels; ++i, from += 3, to += 3) {
        const std::array<Value, 3> pixel = {from[0], from[1], from[2]};
        to[0] = pixel[2];
        to[1] = pixel[1];
        to[2] = pixel[0];
    }
}

/// Exchanges red and blue of 8-bit rows; OpenCV does that with wide instructions.
void exchangeRedAndBlue(const char* from, char* to, std::uint32_t pixels)
{
    const cv::Mat source(1, int(pixels), CV_8UC3, const_cast<char*>(from));
    cv::Mat target(1, int(pixels), CV_8UC3, to);
    cv::cvtColor(source, target, cv::COLOR_BGR2RGB);
}

void readRow(const Layout& layout, const char* from, std::uint8_t* row)
{
    const std::uint32_t values = layout.width * layout.channels;
    if (layout.type == ExImageDataType::UInt16) {
        auto* to = reinterpret_cast<quint16*>(row);
        qFromBigEndian<quint16>(from, values, to);
        if (layout.redFirst)
            exchangeRedAndBlue(to, to, layout.width);
    } else if (layout.redFirst) {
        exchangeRedAndBlue(from, reinterpret_cast<char*>(row), layout.width);
    } else if (layout.greys) {
        for (std::uint32_t i = 0; i < values; ++i)
            row[i] = (*layout.greys)[static_cast<uchar>(from[i])];
    } else {
        std::memcpy(row, from, values);
    }
}

std::uint32_t rowsInPiece(qsizetype step)
{
    return std::uint32_t(std::max<qsizetype>(pieceBytes / step, 1));
}

template<typename Number>
void putLittleEndian(QByteArray& header, qsizetype at, Number number)
{
    qToLittleEndian(number, header.data() + at);
}

qsizetype bmpStep(const SxPicBuf& pixels)
{
    return (qsizetype(pixels.rowBytes()) + 3) / 4 * 4;
}

QByteArray bmpHead(const SxPicBuf& pixels)
{
    const bool isGrey = pixels.channels == 1;
    const qsizetype begin = bmpHeader + bmpInfo + (isGrey ? bmpPalette : 0);
    QByteArray head(begin, '\0');
    head.replace(0, 2, "BM");
    putLittleEndian(head, 2, quint32(begin + bmpStep(pixels) * pixels.height));
    putLittleEndian(head, 10, quint32(begin));
    putLittleEndian(head, 14, quint32(bmpInfo));
    putLittleEndian(head, 18, quint32(pixels.width));
    putLittleEndian(head, 22, quint32(pixels.height));
    putLittleEndian(head, 26, quint16(1)); // planes
    putLittleEndian(head, 28, quint16(8 * pixels.channels));
    for (unsigned grey = 0; isGrey && grey < 256; ++grey)
        putLittleEndian(head, bmpHeader + bmpInfo + 4 * qsizetype(grey), quint32(grey * 0x010101));
    return head;
}

QByteArray anymapHead(const SxPicBuf& pixels, unsigned maximum)
{
    return QByteArrayLiteral("P") + (pixels.channels == 1 ? "5\n" : "6\n") + QByteArray::number(pixels.width) + ' ' +
           QByteArray::number(pixels.height) + '\n' + QByteArray::number(maximum) + '\n';
}

/// Writes a row as an anymap has it.
void writeRow(const SxPicBuf& pixels, std::uint32_t y, char* to)
{
    const std::uint32_t values = pixels.width * pixels.channels;
    const std::uint8_t* row = pixels.row(y);
    if (pixels.dataType == ExImageDataType::UInt16) {
        const void* from = row;
        if (pixels.channels == 3) {
            exchangeRedAndBlue(reinterpret_cast<const quint16*>(row), reinterpret_cast<quint16*>(to), pixels.width);
            from = to;
        }
        qToBigEndian<quint16>(from, values, to);
    } else if (pixels.channels == 3) {
        exchangeRedAndBlue(reinterpret_cast<const char*>(row), to, pixels.width);
    } else {
        std::memcpy(to, row, values);
    }
}

} // namespace

std::optional<Layout> plainImageLayout(const QByteArray& head)
{
    switch (formatOfContent(head)) {
    case ImageFileFormat::Bmp:
        return bmpLayout(head);
    case ImageFileFormat::Anymap:
        return anymapLayout(head);
    default:
        return std::nullopt;
    }
}

FileProblem readPlainImageFile(QFile& file, const Layout& layout, OwnedPicBuf& pixels)
{
    SxPicBufInfo info;
    info.width = layout.width;
    info.height = layout.height;
    info.channels = layout.channels;
    info.dataType = layout.type;
    info.bpc = SxPicBufInfo::bytesPerValue(layout.type) * 8;
    info.storageFormat = ExDataStorageFormat::Interleaved;
    info.isColor = SxPicBufInfo::isColorChannelCount(layout.channels);
    if (!pixels.allocate(info))
        return FileProblem::OutOfMemory;
    std::vector<char> piece(std::size_t(layout.step * std::min(rowsInPiece(layout.step), layout.height)));
    file.seek(layout.begin);
    for (std::uint32_t done = 0; done < layout.height;) {
        const std::uint32_t rows = std::min(rowsInPiece(layout.step), layout.height - done);
        const qsizetype bytes = layout.step * rows;
        if (file.read(piece.data(), bytes) != bytes)
            return file.error() == QFileDevice::NoError ? FileProblem(FileProblem::Truncated)
                                                        : FileProblem(FileProblem::System, file.errorString());
        for (std::uint32_t i = 0; i < rows; ++i, ++done)
            readRow(layout, piece.data() + layout.step * i,
                    pixels.buffer.row(layout.bottomUp ? layout.height - 1 - done : done));
    }
    return {};
}

bool isPlainImageFile(ImageFileFormat format, const SxPicBuf& pixels)
{
    if (format != ImageFileFormat::Bmp)
        return format == ImageFileFormat::Anymap;
    return bmpHeader + bmpInfo + bmpPalette + bmpStep(pixels) * pixels.height <=
           std::numeric_limits<std::int32_t>::max();
}

FileProblem writePlainImageFile(const QString& path, ImageFileFormat format, const SxPicBuf& pixels, unsigned maximum)
{
    const bool isBmp = format == ImageFileFormat::Bmp;
    const qsizetype step = isBmp ? bmpStep(pixels) : qsizetype(pixels.rowBytes());
    QByteArray piece(step * std::min(rowsInPiece(step), pixels.height), '\0'); // what fills up a row of BMP stays 0
    FileReplacement file(path);
    FileProblem problem = file.begin();
    if (!problem)
        problem = file.append(isBmp ? bmpHead(pixels) : anymapHead(pixels, maximum));
    for (std::uint32_t done = 0; done < pixels.height && !problem;) {
        const std::uint32_t rows = std::min(rowsInPiece(step), pixels.height - done);
        for (std::uint32_t i = 0; i < rows; ++i, ++done) {
            char* to = piece.data() + step * i;
            if (isBmp) // from the bottom up
                std::memcpy(to, pixels.row(pixels.height - 1 - done), pixels.rowBytes());
            else
                writeRow(pixels, done, to);
        }
        problem = file.append(QByteArray::fromRawData(piece.constData(), step * rows));
    }
    return problem ? problem : file.complete();
}
