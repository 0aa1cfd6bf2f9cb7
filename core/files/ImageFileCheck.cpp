#include "ImageFileCheck.h"

#include "AnymapHeader.h"
#include "ByteReader.h"
#include "ImageFileFormat.h"
#include "TiffDirectory.h"

#include <algorithm>

namespace {

// The decoders have the same limits. Checking first gives our own error message.
constexpr std::uint64_t maxSide = 1U << 20;
constexpr std::uint64_t maxPixels = 1U << 30;

// No real image in these formats is compressed more than this. Smaller images are not checked.
constexpr std::uint64_t maxCompression = 4096;
constexpr std::uint64_t largeImageBytes = 256U << 20;

/// What a header claims.
struct HeaderClaim {
    std::uint64_t width = 0;
    std::uint64_t height = 0;
    std::uint64_t bytesPerPixel = 1; ///< after decoding
    std::uint64_t fileBytes = 0;     ///< minimum length of the file; 0 if the format does not say
};

FileProblem problemOf(const HeaderClaim& claim, qsizetype fileSize)
{
    if (claim.width == 0 || claim.height == 0)
        return FileProblem::DamagedHeader;
    const QString size = QStringLiteral("%1 x %2 pixels").arg(claim.width).arg(claim.height);
    if (claim.width > maxSide || claim.height > maxSide || claim.width * claim.height > maxPixels)
        return {FileProblem::LargeHeader, size};
    const std::uint64_t decoded = claim.width * claim.height * claim.bytesPerPixel;
    const auto length = std::uint64_t(fileSize);
    if (length < claim.fileBytes)
        return FileProblem::Truncated;
    if (decoded > largeImageBytes && decoded / maxCompression > length)
        return {FileProblem::DamagedSize, QStringLiteral("%1, but the file has only %2 bytes").arg(size).arg(length)};
    return {};
}

FileProblem pngProblem(const QByteArray& file)
{
    const ByteReader reader(file, ByteReader::BigEndian);
    if (!reader.has(0, 33))
        return FileProblem::Truncated;
    if (file.mid(12, 4) != "IHDR")
        return FileProblem::DamagedHeader;
    HeaderClaim claim;
    claim.width = reader.u32(16);
    claim.height = reader.u32(20);
    claim.bytesPerPixel = reader.u8(24) == 16 ? 8 : 4;
    FileProblem problem = problemOf(claim, file.size());
    if (problem)
        return problem;
    constexpr qsizetype besideData = 12; // length, kind and checksum of a chunk
    for (qsizetype at = 8; reader.has(at, besideData); at += besideData + qsizetype(reader.u32(at)))
        if (file.mid(at + 4, 4) == "IEND")
            return {};
    return FileProblem::Truncated;
}

FileProblem bmpProblem(const QByteArray& file, qsizetype size)
{
    const ByteReader reader(file, ByteReader::LittleEndian);
    if (!reader.has(0, 26))
        return FileProblem::Truncated;
    const std::uint64_t pixels = reader.u32(10);
    const bool old = reader.u32(14) == 12;
    if (!old && !reader.has(0, 54))
        return FileProblem::Truncated;
    HeaderClaim claim;
    claim.width = old ? reader.u16(18) : reader.u32(18);
    claim.height = old ? reader.u16(20) : reader.u32(22);
    if (!old && std::int32_t(reader.u32(22)) < 0) // rows from top to bottom
        claim.height = 0 - reader.u32(22);
    claim.bytesPerPixel = 4;
    const std::uint64_t bits = old ? reader.u16(24) : reader.u16(28);
    const std::uint32_t compression = old ? 0 : reader.u32(30);
    const bool runLengths = compression == 1 || compression == 2;
    if (!runLengths && claim.width <= maxSide && claim.height <= maxSide)
        claim.fileBytes = pixels + (claim.width * bits + 31) / 32 * 4 * claim.height;
    return problemOf(claim, size);
}

FileProblem anymapProblem(const QByteArray& file, qsizetype size)
{
    const char kind = file[1];
    const bool bitmap = kind == '1' || kind == '4';
    const std::uint64_t channels = kind == '3' || kind == '6' ? 3 : 1;
    AnymapHeader header(file);
    HeaderClaim claim;
    claim.width = header.number();
    claim.height = header.number();
    const std::uint64_t maximum = bitmap ? 1 : header.number();
    if (maximum == 0 || maximum > 65535)
        return FileProblem::DamagedHeader;
    claim.bytesPerPixel = channels * (maximum > 255 ? 2 : 1);
    if (claim.width <= maxSide && claim.height <= maxSide) {
        const std::uint64_t values = claim.width * claim.height * channels;
        const std::uint64_t begin = std::uint64_t(header.end()) + 1;
        if (kind == '1')
            claim.fileBytes = std::uint64_t(header.end()) + values;
        else if (kind == '2' || kind == '3') // at least a digit and a space per value
            claim.fileBytes = std::uint64_t(header.end()) + values * 2;
        else if (kind == '4')
            claim.fileBytes = begin + (claim.width + 7) / 8 * claim.height;
        else
            claim.fileBytes = begin + values * (maximum > 255 ? 2 : 1);
    }
    return problemOf(claim, size);
}

/// The end of the entropy-coded data that starts at an offset: the start of the next marker.
qsizetype endOfScan(const QByteArray& file, qsizetype at)
{
    for (;;) {
        at = file.indexOf('\xFF', at);
        if (at < 0 || at + 1 >= file.size())
            return file.size();
        const auto next = static_cast<unsigned char>(file[at + 1]);
        if (next != 0 && next != 0xFF && !(next >= 0xD0 && next <= 0xD7))
            return at;
        at += next == 0xFF ? 1 : 2;
    }
}

FileProblem jpegProblem(const QByteArray& file)
{
    constexpr std::uint8_t endOfImage = 0xD9;
    constexpr std::uint8_t startOfScan = 0xDA;
    const ByteReader reader(file, ByteReader::BigEndian);
    HeaderClaim claim;
    qsizetype at = 2;
    for (;;) {
        if (!reader.has(at, 2))
            return FileProblem::Truncated;
        if (reader.u8(at) != 0xFF)
            return FileProblem::Damaged;
        const std::uint8_t marker = reader.u8(at + 1);
        if (marker == 0xFF) { // fill byte
            ++at;
            continue;
        }
        if (marker == endOfImage)
            break;
        if (!reader.has(at, 4) || !reader.has(at, 2 + reader.u16(at + 2)))
            return FileProblem::Truncated;
        const bool frame = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (frame && reader.u16(at + 2) >= 8) {
            claim.height = reader.u16(at + 5);
            claim.width = reader.u16(at + 7);
            claim.bytesPerPixel = 3;
        }
        at += 2 + std::max<qsizetype>(reader.u16(at + 2), 2);
        if (marker == startOfScan)
            at = endOfScan(file, at);
    }
    return problemOf(claim, file.size());
}

FileProblem tiffProblem(const QByteArray& file)
{
    using Tag = TiffDirectory::Tag;
    const TiffDirectory directory(file);
    if (!directory.isComplete())
        return FileProblem::Truncated;
    HeaderClaim claim;
    claim.width = directory.value(Tag::ImageWidth).value_or(0);
    claim.height = directory.value(Tag::ImageLength).value_or(0);
    const std::uint64_t bits = directory.value(Tag::BitsPerSample).value_or(1);
    const std::uint64_t samples = directory.value(Tag::SamplesPerPixel).value_or(1);
    claim.bytesPerPixel = std::clamp<std::uint64_t>(bits / 8, 1, 8) * std::clamp<std::uint64_t>(samples, 1, 65535);
    HeaderClaim tile = claim;
    tile.width = directory.value(Tag::TileWidth).value_or(0);
    tile.height = directory.value(Tag::TileLength).value_or(0);
    if (tile.width != 0 && tile.height != 0) {
        FileProblem problem = problemOf(tile, file.size());
        if (problem)
            return problem;
    }
    return problemOf(claim, file.size());
}

} // namespace

FileProblem imageFileProblem(const QByteArray& file, qsizetype size)
{
    if (file.isEmpty())
        return FileProblem::Empty;
    switch (formatOfContent(file)) {
    case ImageFileFormat::Png:
        return pngProblem(file);
    case ImageFileFormat::Jpeg:
        return jpegProblem(file);
    case ImageFileFormat::Tiff:
        return tiffProblem(file);
    case ImageFileFormat::Bmp:
        return bmpProblem(file, size);
    case ImageFileFormat::Anymap:
        return anymapProblem(file, size);
    case ImageFileFormat::Unknown:
        break;
    }
    return FileProblem::NotAnImage;
}
