#include "ImageFileDepth.h"

#include "AnymapHeader.h"
#include "ByteReader.h"
#include "ImageFileFormat.h"
#include "TiffDirectory.h"

#include <QtCore/QList>
#include <QtCore/QtEndian>

#include <bit>
#include <zlib.h>

namespace {

constexpr qsizetype pngHeaderEnd = 33; // signature and header chunk
const QByteArray pngKeyword = QByteArrayLiteral("Bits per channel");

bool isBinaryAnymap(const QByteArray& file)
{
    return file.startsWith("P5") || file.startsWith("P6");
}

/// The checksum that ends a PNG chunk.
quint32 chunkCheck(const QByteArray& data)
{
    return quint32(crc32(0, reinterpret_cast<const Bytef*>(data.constData()), uInt(data.size())));
}

QByteArray bigEndian(quint32 value)
{
    QByteArray bytes(4, Qt::Uninitialized);
    qToBigEndian(value, bytes.data());
    return bytes;
}

unsigned pngDepth(const QByteArray& file)
{
    const ByteReader reader(file, ByteReader::BigEndian);
    qsizetype at = 8;
    while (reader.has(at, 12) && reader.has(at, 12 + qsizetype(reader.u32(at)))) {
        const QByteArray kind = file.mid(at + 4, 4);
        const QByteArray data = file.mid(at + 8, qsizetype(reader.u32(at)));
        if (kind == "IDAT")
            return 0; // our chunk comes before the pixels
        if (kind == "tEXt" && data.startsWith(pngKeyword + '\0'))
            return data.mid(pngKeyword.size() + 1).toUInt();
        at += 12 + data.size();
    }
    return 0;
}

QByteArray pngWithDepth(const QByteArray& file, unsigned bits)
{
    const QByteArray text = pngKeyword + '\0' + QByteArray::number(bits);
    const QByteArray checked = "tEXt" + text;
    const QByteArray chunk = bigEndian(quint32(text.size())) + checked + bigEndian(chunkCheck(checked));
    return file.left(pngHeaderEnd) + chunk + file.mid(pngHeaderEnd);
}

unsigned tiffDepth(const QByteArray& file)
{
    const TiffDirectory directory(file);
    return unsigned(std::bit_width(directory.value(TiffDirectory::MaxSampleValue).value_or(0)));
}

/// Appends a copy of the first directory with the additional tag, and points the header to it. All other data stays at
/// its offset.
QByteArray tiffWithDepth(const QByteArray& file, unsigned bits)
{
    const TiffDirectory directory(file);
    if (directory.count() == 0)
        return file;
    const bool little = TiffDirectory::byteOrder(file) == ByteReader::LittleEndian;
    const auto u16 = [&](quint16 value) {
        QByteArray bytes(2, Qt::Uninitialized);
        little ? qToLittleEndian(value, bytes.data()) : qToBigEndian(value, bytes.data());
        return bytes;
    };
    const auto u32 = [&](quint32 value) {
        QByteArray bytes(4, Qt::Uninitialized);
        little ? qToLittleEndian(value, bytes.data()) : qToBigEndian(value, bytes.data());
        return bytes;
    };
    QList<QByteArray> entries;
    qsizetype later = 0; // the place of the new entry: tags are in ascending order
    for (qsizetype i = 0; i < directory.count(); ++i) {
        if (directory.tag(i) != TiffDirectory::MaxSampleValue)
            entries += file.mid(directory.offset(i), TiffDirectory::entryBytes);
        if (directory.tag(i) < TiffDirectory::MaxSampleValue)
            later = entries.size();
    }
    const auto samples = quint16(directory.value(TiffDirectory::SamplesPerPixel).value_or(1));
    QByteArray result = file;
    if (result.size() % 2)
        result += '\0';
    const quint16 maximum = quint16((1U << bits) - 1);
    // One value for each sample: in the entry itself or, if there are more than two, before the directory.
    QByteArray place;
    for (quint16 i = 0; i < samples; ++i)
        place += u16(maximum);
    if (samples > 2) {
        const auto at = quint32(result.size());
        result += place;
        place = u32(at);
    }
    entries.insert(later, u16(TiffDirectory::MaxSampleValue) + u16(TiffDirectory::shortType) + u32(samples) +
                              place.leftJustified(4, '\0'));
    result.replace(4, 4, u32(quint32(result.size())));
    result += u16(quint16(entries.size())) + entries.join() + file.mid(directory.offset(directory.count()), 4);
    return result;
}

unsigned anymapDepth(const QByteArray& file)
{
    AnymapHeader header(file);
    header.number();
    header.number();
    return unsigned(std::bit_width(header.number()));
}

QByteArray anymapWithDepth(const QByteArray& file, unsigned bits)
{
    AnymapHeader header(file);
    header.number();
    header.number();
    header.number();
    return file.left(header.begin()) + QByteArray::number((1U << bits) - 1) + file.mid(header.end());
}

} // namespace

unsigned recordedDepth(const QByteArray& file)
{
    switch (formatOfContent(file)) {
    case ImageFileFormat::Png:
        return pngDepth(file);
    case ImageFileFormat::Tiff:
        return tiffDepth(file);
    case ImageFileFormat::Anymap:
        return isBinaryAnymap(file) ? anymapDepth(file) : 0;
    default:
        return 0;
    }
}

QByteArray withRecordedDepth(const QByteArray& file, unsigned bits)
{
    switch (formatOfContent(file)) {
    case ImageFileFormat::Png:
        return pngWithDepth(file, bits);
    case ImageFileFormat::Tiff:
        return tiffWithDepth(file, bits);
    case ImageFileFormat::Anymap:
        return isBinaryAnymap(file) ? anymapWithDepth(file, bits) : file;
    default:
        return file;
    }
}
