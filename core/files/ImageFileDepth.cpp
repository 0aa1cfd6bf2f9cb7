#include "ImageFileDepth.h"

#include "ByteReader.h"

#include <QtCore/QList>
#include <QtCore/QtEndian>

#include <algorithm>
#include <bit>
#include <zlib.h>

namespace {

constexpr auto pngSignature = "\x89PNG\r\n\x1A\n";
constexpr qsizetype pngHeaderEnd = 33; // signature and header chunk
const QByteArray pngKeyword = QByteArrayLiteral("Bits per channel");

constexpr unsigned maxSampleValue = 281;
constexpr unsigned samplesPerPixel = 277;
constexpr unsigned shortType = 3;
constexpr qsizetype entryBytes = 12;

bool isPng(const QByteArray& file)
{
    return file.startsWith(pngSignature);
}

bool isTiff(const QByteArray& file)
{
    return file.startsWith(QByteArray("II*\0", 4)) || file.startsWith(QByteArray("MM\0*", 4));
}

bool isBinaryAnymap(const QByteArray& file)
{
    return file.startsWith("P5") || file.startsWith("P6");
}

ByteReader tiffReader(const QByteArray& file)
{
    return ByteReader(file, file[0] == 'I' ? ByteReader::LittleEndian : ByteReader::BigEndian);
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

/// The offset of the first directory's entries and their number; 0 entries if the directory is not inside the file.
struct TiffDirectory {
    qsizetype begin = 0;
    qsizetype count = 0;
};

TiffDirectory firstDirectory(const ByteReader& reader)
{
    if (!reader.has(0, 8) || !reader.has(qsizetype(reader.u32(4)), 2))
        return TiffDirectory();
    const auto at = qsizetype(reader.u32(4));
    const TiffDirectory directory{at + 2, qsizetype(reader.u16(at))};
    return reader.has(directory.begin, directory.count * entryBytes + 4) ? directory : TiffDirectory();
}

unsigned tiffDepth(const QByteArray& file)
{
    const ByteReader reader = tiffReader(file);
    const TiffDirectory directory = firstDirectory(reader);
    for (qsizetype i = 0; i < directory.count; ++i) {
        const qsizetype entry = directory.begin + i * entryBytes;
        if (reader.u16(entry) != maxSampleValue || reader.u16(entry + 2) != shortType)
            continue;
        const qsizetype place = reader.u32(entry + 4) > 2 ? qsizetype(reader.u32(entry + 8)) : entry + 8;
        return reader.has(place, 2) ? unsigned(std::bit_width(reader.u16(place))) : 0;
    }
    return 0;
}

/// Appends a copy of the first directory with the additional tag, and points the header to it. All other data stays at
/// its offset.
QByteArray tiffWithDepth(const QByteArray& file, unsigned bits)
{
    const ByteReader reader = tiffReader(file);
    const bool little = file[0] == 'I';
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
    const TiffDirectory directory = firstDirectory(reader);
    if (directory.count == 0)
        return file;

    QList<QByteArray> entries;
    quint16 samples = 1;
    for (qsizetype i = 0; i < directory.count; ++i) {
        const qsizetype at = directory.begin + i * entryBytes;
        if (reader.u16(at) == samplesPerPixel)
            samples = reader.u16(at + 8);
        if (reader.u16(at) != maxSampleValue)
            entries += file.mid(at, entryBytes);
    }
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
    const QByteArray entry =
        u16(quint16(maxSampleValue)) + u16(quint16(shortType)) + u32(samples) + place.leftJustified(4, '\0');
    const auto later = std::find_if(entries.begin(), entries.end(), [&](const QByteArray& other) {
        return ByteReader(other, little ? ByteReader::LittleEndian : ByteReader::BigEndian).u16(0) > maxSampleValue;
    });
    entries.insert(later, entry);
    result.replace(4, 4, u32(quint32(result.size())));
    result +=
        u16(quint16(entries.size())) + entries.join() + file.mid(directory.begin + directory.count * entryBytes, 4);
    return result;
}

/// Where the header has its third number, the maximum. A comment ends with its line.
struct AnymapMaximum {
    qsizetype begin = 0;
    qsizetype end = 0;
};

AnymapMaximum anymapMaximum(const QByteArray& file)
{
    qsizetype at = 2;
    AnymapMaximum place;
    for (int number = 0; number < 3; ++number) {
        for (; at < file.size() && !(file[at] >= '0' && file[at] <= '9'); ++at) {
            if (file[at] == '#')
                at = file.indexOf('\n', at);
            if (at < 0)
                return AnymapMaximum();
        }
        place.begin = at;
        while (at < file.size() && file[at] >= '0' && file[at] <= '9')
            ++at;
        place.end = at;
    }
    return place;
}

} // namespace

unsigned recordedDepth(const QByteArray& file)
{
    if (isPng(file))
        return pngDepth(file);
    if (isTiff(file))
        return tiffDepth(file);
    if (isBinaryAnymap(file)) {
        const AnymapMaximum place = anymapMaximum(file);
        return unsigned(std::bit_width(file.mid(place.begin, place.end - place.begin).toUInt()));
    }
    return 0;
}

QByteArray withRecordedDepth(const QByteArray& file, unsigned bits)
{
    if (isPng(file))
        return pngWithDepth(file, bits);
    if (isTiff(file))
        return tiffWithDepth(file, bits);
    if (isBinaryAnymap(file)) {
        const AnymapMaximum place = anymapMaximum(file);
        return file.left(place.begin) + QByteArray::number((1U << bits) - 1) + file.mid(place.end);
    }
    return file;
}
