#include "DisplayImage.h"

#include "CxPicBufAPI.h"
#include "buffers/Packed565.h"
#include "buffers/PixelTypes.h"

#include <QtCore/QStringList>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

/// The value that becomes black and the value that becomes white.
struct Range {
    double low = 0;
    double high = 1;
};

/// The buffer as it is read: values of an unknown type are taken for bytes.
SxPicBuf withNumberType(const SxPicBuf& buffer)
{
    SxPicBuf readable = buffer;
    if (!visitNumberType(buffer.dataType, [](auto) {}))
        readable.dataType = ExImageDataType::UInt8;
    return readable;
}

template<typename T>
Range rangeOfFloats(const SxPicBuf& buffer)
{
    if (buffer.saturation > 0)
        return {0, double(buffer.saturation)};
    const std::size_t perRow = buffer.valuesPerRow();
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (std::uint32_t y = 0; y < buffer.height; ++y) {
        for (std::size_t i = 0; i < perRow; ++i) {
            const double value = double(loadValue<T>(buffer.row(y), i));
            if (!std::isfinite(value))
                continue;
            low = std::min(low, value);
            high = std::max(high, value);
        }
    }
    return low < high ? Range{low, high} : Range{};
}

template<typename T>
Range rangeOf(const SxPicBuf& buffer)
{
    if constexpr (std::is_floating_point_v<T>) {
        return rangeOfFloats<T>(buffer);
    } else {
        return {0, double(buffer.fullScale())};
    }
}

uchar shade(double value, const Range& range)
{
    const double scaled = (value - range.low) * 255.0 / (range.high - range.low);
    if (!(scaled > 0)) // NaN too
        return 0;
    return scaled >= 255 ? uchar(255) : uchar(std::lround(scaled));
}

/// Turns values into shades; types of one or two bytes use a table.
template<typename T>
class Shader
{
public:
    explicit Shader(const Range& range)
        : m_range(range)
    {
        if constexpr (sizeof(T) <= 2) {
            m_table.resize(std::size_t(1) << (8 * sizeof(T)));
            for (std::size_t i = 0; i < m_table.size(); ++i)
                m_table[i] = shade(double(static_cast<T>(i)), range);
        }
    }

    uchar operator()(T value) const
    {
        if constexpr (sizeof(T) <= 2)
            return m_table[std::make_unsigned_t<T>(value)];
        else
            return shade(double(value), m_range);
    }

private:
    Range m_range;
    std::vector<uchar> m_table;
};

template<typename T>
QImage shaded(const SxPicBuf& buffer)
{
    const std::size_t channels = buffer.channels;
    const std::size_t shown = channels < 3 ? 1 : 3;
    QImage image(int(buffer.width), int(buffer.height), shown == 1 ? QImage::Format_Grayscale8 : QImage::Format_BGR888);
    if (image.isNull())
        return image;
    const Shader<T> shader(rangeOf<T>(buffer));
    for (std::uint32_t y = 0; y < buffer.height; ++y) {
        const std::uint8_t* in = buffer.row(y);
        uchar* out = image.scanLine(int(y));
        for (std::size_t x = 0; x < buffer.width; ++x)
            for (std::size_t c = 0; c < shown; ++c)
                *out++ = shader(loadValue<T>(in, x * channels + c));
    }
    return image;
}

QImage packedImage(const SxPicBuf& buffer)
{
    QImage image(int(buffer.width), int(buffer.height), QImage::Format_BGR888);
    if (image.isNull())
        return image;
    SxPicBuf colours;
    colours.width = buffer.width;
    colours.height = buffer.height;
    colours.setByteColors(3);
    colours.lineStride = std::uint32_t(image.bytesPerLine());
    colours.data = image.bits();
    return CxPicBufAPI::ConvertPicToRGB(buffer, colours) ? image : QImage();
}

template<typename T>
QString valueText(T value)
{
    if constexpr (std::is_floating_point_v<T>)
        return QString::number(double(value), 'g', 9);
    else
        return QString::number(value);
}

QStringList channelNames(const SxPicBuf& buffer)
{
    if (SxPicBufInfo::isColorChannelCount(buffer.channels))
        return {QStringLiteral("B"), QStringLiteral("G"), QStringLiteral("R"), QStringLiteral("A")};
    return {};
}

QString typeName(ExImageDataType type)
{
    constexpr std::array<const char*, 12> names = {"unknown", "int8",  "uint8",  "int16", "uint16", "int32",
                                                   "uint32",  "int64", "uint64", "float", "double", "5-6-5"};
    const auto index = std::size_t(type);
    return QString::fromLatin1(names[index < names.size() ? index : 0]);
}

} // namespace

QImage displayImage(const SxPicBuf& buffer)
{
    if (!buffer.data || buffer.width == 0 || buffer.height == 0 || buffer.channels == 0)
        return {};
    if (buffer.dataType == ExImageDataType::Packed565)
        return packedImage(buffer);
    QImage image;
    const SxPicBuf readable = withNumberType(buffer);
    visitNumberType(readable.dataType, [&]<typename T>(std::type_identity<T>) { image = shaded<T>(readable); });
    return image;
}

QString pixelText(const SxPicBuf& buffer, int x, int y)
{
    if (!buffer.data || x < 0 || y < 0 || std::uint32_t(x) >= buffer.width || std::uint32_t(y) >= buffer.height)
        return {};
    const std::uint8_t* row = buffer.row(std::uint32_t(y));
    if (buffer.dataType == ExImageDataType::Packed565) {
        const Packed565 colour = Packed565::unpack(loadValue<std::uint16_t>(row, std::size_t(x)));
        return QStringLiteral("R %1  G %2  B %3").arg(colour.red).arg(colour.green).arg(colour.blue);
    }
    QStringList values;
    visitNumberType(withNumberType(buffer).dataType, [&]<typename T>(std::type_identity<T>) {
        for (std::size_t c = 0; c < buffer.channels; ++c)
            values += valueText(loadValue<T>(row, std::size_t(x) * buffer.channels + c));
    });
    const QStringList names = channelNames(buffer);
    for (qsizetype i = 0; i < values.size() && i < names.size(); ++i)
        values[i].prepend(names[i] + QLatin1Char(' '));
    if (!names.isEmpty())
        std::swap(values[0], values[2]); // memory has blue first, readers expect red first
    return values.join(QStringLiteral("  "));
}

QString formatText(const SxPicBufInfo& info)
{
    const QString kind = info.dataType == ExImageDataType::Packed565 ? QStringLiteral("colour")
                         : info.channels == 1                        ? QStringLiteral("mono")
                         : info.channels < 3                         ? QStringLiteral("%1 channels").arg(info.channels)
                                             : QStringLiteral("colour, %1 channels").arg(info.channels);
    return QStringLiteral("%1 x %2, %3, %4 bit (%5)")
        .arg(info.width)
        .arg(info.height)
        .arg(kind)
        .arg(info.bpc)
        .arg(typeName(info.dataType));
}
