#pragma once

#include "HostGlobal.h"

#include <QtCore/QFlags>
#include <QtCore/QList>
#include <QtCore/QString>

/// Statistics of a region, one set for each channel; filled by CxPicBufMeas::measureHistogram().
class VANTREL_HOST_EXPORT CxHistoData
{
public:
    /// One set of statistics, in units of the pixel values. No precision is lost, whatever the width of the integers or
    /// the number of pixels. A NaN value makes mean, stdev and rms NaN; min and max ignore it.
    struct CxPixelStats {
        double min = 0.0;
        double max = 0.0;
        double mean = 0.0;
        double stdev = 0.0; ///< standard deviation of the population
        double rms = 0.0;   ///< root mean square
    };

    /// What to measure.
    enum ExHistoDataFlag {
        Histogram = 1,          ///< count the values
        Statistics = 2,         ///< fill the statistics
        Luminance = 4,          ///< for colours, add a channel "Luminance": 0.299 red + 0.587 green + 0.114 blue
        SubtractBlackLevel = 8, ///< subtract the black level, except from alpha; values may become negative
    };
    Q_DECLARE_FLAGS(ExHistoDataFlags, ExHistoDataFlag)

    /// One channel: Mono. Three or four: Blue, Green, Red and Alpha, in memory order. Other numbers: Channel 0, Channel
    /// 1 and so on. Packed colours have the first three; their values keep their 5 or 6 bits.
    QList<QString> channelNames;
    QList<CxPixelStats> stats; ///< one set for each name, if requested
    /// Counts for each name in 256 equal bins, if requested. The bins cover 0 to the full scale of bpc for unsigned
    /// types, the range of the type for signed integers, and 0 to the saturation (1 if not given) for floating types.
    /// The end bins include the values beyond them. NaN is not counted.
    QList<QList<quint64>> histogram;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(CxHistoData::ExHistoDataFlags)
