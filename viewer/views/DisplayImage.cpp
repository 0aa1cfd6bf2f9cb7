#include "DisplayImage.h"

#include "CxPicBufAPI.h"

#include <QtCore/QStringList>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

/// The value that becomes black and the value that becomes white.
struct Range {
    double low = 0;
    double high = 1;
};

/// Calls visit with a null pointer of the type in which the buffer's values are stored.
template<typename Visitor>
auto visitValueType(ExImageDataType type, Visitor visit)
{
    switch (type) {
    case ExImageDataType::Int8:
        return visit(static_cast<std::int8_t*>(nullptr));
    case ExImageDataType::Int16:
        return visit(static_cast<std::int16_t*>(nullptr));
    case ExImageDataType::UInt16:
    case ExImageDataType::Packed565:
        return visit(static_cast<std::uint16_t*>(nullptr));
    case ExImageDataType::Int32:
        return visit(static_cast<std::int32_t*>(nullptr));
    case ExImageDataType::UInt32:
        return visit(static_cast<std::uint32_t*>(nullptr));
    case ExImageDataType::Int64:
        return visit(static_cast<std::int64_t*>(nullptr));
    case ExImageDataType::UInt64:
        return visit(static_cast<std::uint64_t*>(nullptr));
    case ExImageDataType::Float:
        return visit(static_cast<float*>(nullptr));
    case ExImageDataType::Double:
        return visit(static_cast<double*>(nullptr));
    default:
        return visit(static_cast<std::uint8_t*>(nullptr));
    }
}

/// Copies the value, since rows in memory that a host provides need not be aligned.
template<typename T>
T valueAt(const std::uint8_t* row, std::size_t index)
{
    T value;
    std::memcpy(&value, row + index * sizeof(T), sizeof(T));
    return value;
}

template<typename T>
Range rangeOfFloats(const SxPicBuf& buffer)
{
    if (buffer.saturation > 0)
        return {0, double(buffer.saturation)};
    const std::size_t perRow = std::size_t(buffer.width) * buffer.channels;
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (std::uint32_t y = 0; y < buffer.height; ++y) {
        for (std::size_t i = 0; i < perRow; ++i) {
            const double value = double(valueAt<T>(buffer.row(y), i));
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
        const double typeLimit = double(std::numeric_limits<T>::max());
        const double bitLimit = buffer.bpc ? std::ldexp(1.0, int(std::min(buffer.bpc, 64U))) - 1 : typeLimit;
        return {0, std::min(typeLimit, bitLimit)};
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
                *out++ = shader(valueAt<T>(in, x * channels + c));
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
    colours.channels = 3;
    colours.bpc = 8;
    colours.dataType = ExImageDataType::UInt8;
    colours.storageFormat = ExDataStorageFormat::Interleaved;
    colours.isColor = true;
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
    if (buffer.channels == 3 || buffer.channels == 4)
        return {QStringLiteral("B"), QStringLiteral("G"), QStringLiteral("R"), QStringLiteral("A")};
    return {};
}

QString typeName(ExImageDataType type)
{
    switch (type) {
    case ExImageDataType::Int8:
        return QStringLiteral("int8");
    case ExImageDataType::UInt8:
        return QStringLiteral("uint8");
    case ExImageDataType::Int16:
        return QStringLiteral("int16");
    case ExImageDataType::UInt16:
        return QStringLiteral("uint16");
    case ExImageDataType::Int32:
        return QStringLiteral("int32");
    case ExImageDataType::UInt32:
        return QStringLiteral("uint32");
    case ExImageDataType::Int64:
        return QStringLiteral("int64");
    case ExImageDataType::UInt64:
        return QStringLiteral("uint64");
    case ExImageDataType::Float:
        return QStringLiteral("float");
    case ExImageDataType::Double:
        return QStringLiteral("double");
    case ExImageDataType::Packed565:
        return QStringLiteral("5-6-5");
    case ExImageDataType::None:
        break;
    }
    return QStringLiteral("unknown");
}

} // namespace

QImage displayImage(const SxPicBuf& buffer)
{
    if (!buffer.data || buffer.width == 0 || buffer.height == 0 || buffer.channels == 0)
        return {};
    if (buffer.dataType == ExImageDataType::Packed565)
        return packedImage(buffer);
    return visitValueType(buffer.dataType, [&]<typename T>(T*) { return shaded<T>(buffer); });
}

QString pixelText(const SxPicBuf& buffer, int x, int y)
{
    if (!buffer.data || x < 0 || y < 0 || std::uint32_t(x) >= buffer.width || std::uint32_t(y) >= buffer.height)
        return {};
    const std::uint8_t* row = buffer.row(std::uint32_t(y));
    if (buffer.dataType == ExImageDataType::Packed565) {
        const unsigned value = valueAt<std::uint16_t>(row, std::size_t(x));
        return QStringLiteral("R %1  G %2  B %3").arg(value >> 11).arg((value >> 5) & 63U).arg(value & 31U);
    }
    QStringList values;
    visitValueType(buffer.dataType, [&]<typename T>(T*) {
        for (std::size_t c = 0; c < buffer.channels; ++c)
            values += valueText(valueAt<T>(row, std::size_t(x) * buffer.channels + c));
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
