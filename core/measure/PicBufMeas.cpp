#include "CxPicBufMeas.h"

#include "CxImageData.h"
#include "LaneSums.h"
#include "OwnedPicBuf.h"
#include "RowChannels.h"
#include "ValueStatistics.h"
#include "buffers/Packed565.h"
#include "buffers/PicBufChecks.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

namespace {

constexpr std::size_t alphaChannel = 3;
constexpr int histogramBins = 256;

QList<QString> namesOf(std::uint32_t channels)
{
    if (channels == 1)
        return {QStringLiteral("Mono")};
    const QList<QString> colours = {QStringLiteral("Blue"), QStringLiteral("Green"), QStringLiteral("Red"),
                                    QStringLiteral("Alpha")};
    if (SxPicBufInfo::isColorChannelCount(channels))
        return colours.first(qsizetype(channels));
    QList<QString> names;
    for (std::uint32_t c = 0; c < channels; ++c)
        names += QStringLiteral("Channel %1").arg(c);
    return names;
}

/// The part of the image inside a rectangle. It has no pixels if the rectangle lies outside the image. Packed colours
/// are unpacked to three channels, in memory that `unpacked` owns.
SxPicBuf measuredPart(const CxImageData* image, const QRect& rect, OwnedPicBuf& unpacked)
{
    const SxPicBuf* buffer = image ? const_cast<CxImageData*>(image)->picBuf() : nullptr; // picBuf() changes nothing
    if (!buffer || !hasPixels(*buffer) || rect.right() < 0 || rect.bottom() < 0 || !rect.isValid())
        return SxPicBuf();
    const auto left = unsigned(std::max(rect.left(), 0));
    const auto top = unsigned(std::max(rect.top(), 0));
    const SxPicBuf part =
        rectangleOf(*buffer, left, top, unsigned(rect.right()) - left + 1, unsigned(rect.bottom()) - top + 1);
    if (!part.data || part.dataType != ExImageDataType::Packed565)
        return part;
    SxPicBufInfo info = part;
    info.dataType = ExImageDataType::UInt8;
    info.channels = 3;
    info.bpc = 6;
    if (!unpacked.allocate(info))
        throw std::bad_alloc();
    unpackComponents(part, unpacked.buffer);
    return unpacked.buffer;
}

/// The value to subtract from a channel. Alpha has no black level.
double blackLevelOf(const SxPicBuf& part, std::size_t channel, CxHistoData::ExHistoDataFlags flags)
{
    const bool subtract = flags.testFlag(CxHistoData::SubtractBlackLevel) && channel != alphaChannel;
    return subtract ? double(part.blackLevel) : 0.0;
}

CxHistoData::CxPixelStats pixelStats(const ValueSummary& summary, double blackLevel)
{
    CxHistoData::CxPixelStats stats;
    const long double mean = summary.mean - static_cast<long double>(blackLevel);
    stats.min = double(summary.min - static_cast<long double>(blackLevel));
    stats.max = double(summary.max - static_cast<long double>(blackLevel));
    stats.mean = double(mean);
    stats.stdev = double(std::sqrt(summary.variance));
    stats.rms = double(std::sqrt(mean * mean + summary.variance));
    return stats;
}

/// Sorts values into bins of equal width that span the full scale.
class Binning
{
public:
    Binning(const SxPicBufInfo& info, double blackLevel)
    {
        visitNumberType(info.dataType, [&]<typename T>(std::type_identity<T>) {
            double span = double(info.fullScale());
            if constexpr (std::is_integral_v<T>)
                span += 1;
            if constexpr (std::is_integral_v<T> && std::is_signed_v<T>) {
                m_lowest = double(std::numeric_limits<T>::min());
                span = -2 * m_lowest;
            }
            m_perValue = histogramBins / span;
        });
        m_lowest += blackLevel;
    }

    template<typename T>
    void count(QList<quint64>& bins, const std::uint8_t* values, std::size_t count) const
    {
        for (std::size_t i = 0; i < count; ++i) {
            const double bin = std::floor((double(loadValue<T>(values, i)) - m_lowest) * m_perValue);
            if (bin == bin) // false for NaN
                ++bins[qsizetype(std::clamp(bin, 0.0, double(histogramBins - 1)))];
        }
    }

private:
    double m_lowest = 0;
    double m_perValue = 1;
};

template<typename T>
void brightnessOfRow(const std::uint8_t* row, std::size_t channels, std::vector<double>& brightness)
{
    for (std::size_t x = 0; x < brightness.size(); ++x) {
        const auto value = [&](std::size_t channel) { return double(loadValue<T>(row, x * channels + channel)); };
        brightness[x] = 0.114 * value(0) + 0.587 * value(1) + 0.299 * value(2);
    }
}

/// The statistics and the histogram of one channel.
template<typename T>
class ChannelMeasurement
{
public:
    ChannelMeasurement(const SxPicBuf& part, double blackLevel, CxHistoData::ExHistoDataFlags flags)
        : m_blackLevel(blackLevel)
        , m_flags(flags)
        , m_binning(part, blackLevel)
        , m_bins(flags.testFlag(CxHistoData::Histogram) ? histogramBins : 0)
    {
    }

    void add(const std::uint8_t* values, std::size_t count)
    {
        if (m_flags.testFlag(CxHistoData::Statistics))
            m_statistics.add(values, count);
        if (!m_bins.isEmpty())
            m_binning.count<T>(m_bins, values, count);
    }

    void store(CxHistoData& result) const
    {
        if (m_flags.testFlag(CxHistoData::Statistics))
            result.stats += pixelStats(m_statistics.summary(), m_blackLevel);
        if (!m_bins.isEmpty())
            result.histogram += m_bins;
    }

private:
    double m_blackLevel;
    CxHistoData::ExHistoDataFlags m_flags;
    ValueStatistics<T> m_statistics;
    Binning m_binning;
    QList<quint64> m_bins;
};

/// The statistics of all channels, without separating the channels.
template<typename T>
void measureInterleaved(CxHistoData& result, const SxPicBuf& part, CxHistoData::ExHistoDataFlags flags)
{
    InterleavedStatistics<T> statistics(part.channels);
    const std::size_t count = part.valuesPerRow();
    if (isGapless(part, count))
        statistics.add(part.data, count * part.height);
    else
        for (std::uint32_t y = 0; y < part.height; ++y)
            statistics.add(part.row(y), count);
    for (std::uint32_t c = 0; c < part.channels; ++c)
        result.stats += pixelStats(statistics.summary(c), blackLevelOf(part, c, flags));
}

template<typename T>
void measureChannels(CxHistoData& result, const SxPicBuf& part, CxHistoData::ExHistoDataFlags flags)
{
    if constexpr (hasLaneSums<T>) {
        const bool onlyStatistics = flags.testFlag(CxHistoData::Statistics) && !flags.testFlag(CxHistoData::Histogram);
        if (onlyStatistics && part.channels <= InterleavedStatistics<T>::mostChannels)
            return measureInterleaved<T>(result, part, flags);
    }
    std::vector<ChannelMeasurement<T>> channels;
    for (std::uint32_t c = 0; c < part.channels; ++c)
        channels.emplace_back(part, blackLevelOf(part, c, flags), flags);
    RowChannels<T> row(part.channels, part.width);
    for (std::uint32_t y = 0; y < part.height; ++y) {
        row.take(part.row(y));
        for (std::uint32_t c = 0; c < part.channels; ++c)
            channels[c].add(row.channel(c), part.width);
    }
    for (const ChannelMeasurement<T>& channel : channels)
        channel.store(result);
}

template<typename T>
void measureBrightness(CxHistoData& result, const SxPicBuf& part, CxHistoData::ExHistoDataFlags flags)
{
    ChannelMeasurement<double> brightness(part, blackLevelOf(part, 0, flags), flags);
    std::vector<double> values(part.width);
    for (std::uint32_t y = 0; y < part.height; ++y) {
        brightnessOfRow<T>(part.row(y), part.channels, values);
        brightness.add(reinterpret_cast<const std::uint8_t*>(values.data()), values.size());
    }
    result.channelNames += QStringLiteral("Luminance");
    brightness.store(result);
}

template<typename T>
void measureRows(CxProfileData& result, const SxPicBuf& part)
{
    RowChannels<T> row(part.channels, part.width);
    for (std::uint32_t y = 0; y < part.height; ++y) {
        row.take(part.row(y));
        for (std::uint32_t c = 0; c < part.channels; ++c) {
            ValueStatistics<T> statistics;
            statistics.add(row.channel(c), part.width);
            result.stats[qsizetype(c)] += pixelStats(statistics.summary(), 0);
        }
    }
}

template<typename T>
using ColumnStatistics = std::vector<ValueStatistics<T>>; ///< one for each value of a row

/// Adds columns from one on by copying each into contiguous memory.
template<typename T>
void addColumns(ColumnStatistics<T>& statistics, const SxPicBuf& part, std::size_t from)
{
    // Copies several columns at a time, so that each row is fetched from memory once for all of them.
    constexpr std::size_t together = 64;
    std::vector<T> runs(std::min(together, statistics.size() - from) * part.height);
    for (std::size_t first = from; first < statistics.size(); first += together) {
        const std::size_t count = std::min(together, statistics.size() - first);
        for (std::uint32_t y = 0; y < part.height; ++y)
            for (std::size_t i = 0; i < count; ++i)
                runs[i * part.height + y] = loadValue<T>(part.row(y), first + i);
        for (std::size_t i = 0; i < count; ++i)
            statistics[first + i].add(reinterpret_cast<const std::uint8_t*>(&runs[i * part.height]), part.height);
    }
}

/// Adds as many columns as fill whole vectors, without copying them. Returns their number.
template<typename T>
std::size_t addColumnLanes(ColumnStatistics<T>& statistics, const SxPicBuf& part)
{
    constexpr std::size_t lanes = LaneSums<T>::lanes;
    const std::size_t columns = statistics.size() - statistics.size() % lanes;
    for (std::size_t y = 0; y < part.height; y += LaneSums<T>::mostRuns) {
        const std::size_t rows = std::min(LaneSums<T>::mostRuns, part.height - y);
        for (std::size_t x = 0; x < columns; x += lanes) {
            LaneSums<T> sums;
            sums.add(part.row(std::uint32_t(y)) + x * sizeof(T), part.lineStride, rows);
            for (std::size_t lane = 0; lane < lanes; ++lane)
                sums.addTo(statistics[x + lane], lane, rows);
        }
    }
    return columns;
}

/// The same for floating values.
template<typename T>
std::size_t addColumnMoments(ColumnStatistics<T>& statistics, const SxPicBuf& part)
{
    constexpr std::size_t together = ColumnMoments<T>::columns;
    const std::size_t columns = statistics.size() - statistics.size() % together;
    constexpr std::size_t block = MergedStatistics<T>::blockSize;
    for (std::size_t y = 0; y < part.height; y += block) {
        const std::size_t rows = std::min(block, part.height - y);
        for (std::size_t x = 0; x < columns; x += together) {
            const std::uint8_t* const first = part.row(std::uint32_t(y)) + x * sizeof(T);
            ColumnMoments<T> moments;
            for (std::size_t i = 0; i < together; ++i) {
                moments.bases[i] = loadValue<T>(first, i);
                moments.least[i] = statistics[x + i].least();
                moments.greatest[i] = statistics[x + i].greatest();
            }
            momentsOfColumns<T>(moments, first, part.lineStride, rows);
            for (std::size_t i = 0; i < together; ++i)
                statistics[x + i].addBlock({moments.sums[i], moments.squares[i], moments.least[i], moments.greatest[i]},
                                           moments.bases[i], rows);
        }
    }
    return columns;
}

template<typename T>
void measureColumns(CxProfileData& result, const SxPicBuf& part)
{
    ColumnStatistics<T> statistics(part.valuesPerRow());
    std::size_t added = 0;
    if constexpr (hasLaneSums<T>)
        added = addColumnLanes<T>(statistics, part);
    else if constexpr (std::is_floating_point_v<T>)
        added = addColumnMoments<T>(statistics, part);
    addColumns<T>(statistics, part, added);
    for (std::size_t i = 0; i < statistics.size(); ++i)
        result.stats[qsizetype(i % part.channels)] += pixelStats(statistics[i].summary(), 0);
}

/// Runs a measurement on the part of an image inside a rectangle. False if there is no such part, or no memory.
template<typename Measurement>
bool measure(const CxImageData* image, const QRect& rect, Measurement measurement)
{
    try {
        OwnedPicBuf unpacked;
        const SxPicBuf part = measuredPart(image, rect, unpacked);
        return part.data && visitNumberType(part.dataType, [&](auto type) { measurement(type, part); });
    } catch (const std::bad_alloc&) {
        return refuse("CxPicBufMeas", "out of memory");
    }
}

} // namespace

bool CxPicBufMeas::measureHistogram(CxHistoData& result, const CxImageData* image, const QRect& rect,
                                    CxHistoData::ExHistoDataFlags flags)
{
    result = CxHistoData();
    return measure(image, rect, [&]<typename T>(std::type_identity<T>, const SxPicBuf& part) {
        result.channelNames = namesOf(part.channels);
        measureChannels<T>(result, part, flags);
        if (flags.testFlag(CxHistoData::Luminance) && SxPicBufInfo::isColorChannelCount(part.channels))
            measureBrightness<T>(result, part, flags);
    });
}

bool CxPicBufMeas::measureRowsColumnsProfileStats(bool rows, CxProfileData& result, const CxImageData* image,
                                                  const QRect& rect)
{
    result = CxProfileData();
    return measure(image, rect, [&]<typename T>(std::type_identity<T>, const SxPicBuf& part) {
        result.channelNames = namesOf(part.channels);
        result.stats.resize(qsizetype(part.channels));
        result.profileCount = int(rows ? part.height : part.width);
        if (rows)
            measureRows<T>(result, part);
        else
            measureColumns<T>(result, part);
    });
}
