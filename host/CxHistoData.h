#pragma once

#include "HostGlobal.h"

#include <QtCore/QFlags>
#include <QtCore/QList>
#include <QtCore/QString>

/// Statistics of a region, one set for each channel; filled by CxPicBufMeas::measureHistogram().
class VANTREL_HOST_EXPORT CxHistoData
{
public:
    /// One set of statistics, in units of the pixel values. Computed without loss for integers of every width and any
    /// number of pixels. A floating value that is not a number makes mean, stdev and rms so, and counts neither for min
    /// nor for max.
    struct CxPixelStats {
        double min = 0.0;
        double max = 0.0;
        double mean = 0.0;
        double stdev = 0.0; ///< standard deviation of the population
        double rms = 0.0;   ///< root of the mean square
    };

    /// What to measure.
    enum ExHistoDataFlag {
        Histogram = 1,          ///< count the values
        Statistics = 2,         ///< fill the statistics
        Luminance = 4,          ///< for colours, add a channel "Luminance": 0.299 red + 0.587 green + 0.114 blue
        SubtractBlackLevel = 8, ///< measure values less the buffer's black level, but for alpha; may be below zero
    };
    Q_DECLARE_FLAGS(ExHistoDataFlags, ExHistoDataFlag)

    /// Mono; or Blue, Green, Red, Alpha in the order of memory for three and four channels (packed colours: the first
    /// three, in units of their 5 and 6 bits); or Channel 0, Channel 1 and so on for other numbers.
    QList<QString> channelNames;
    QList<CxPixelStats> stats; ///< one for each name, when asked for
    /// Counts for each name, when asked for, in 256 equal bins: unsigned types from 0 to full scale of bpc, signed ones
    /// over the range of the type, floating ones from 0 to the saturation, or 1. The end bins also count what lies
    /// beyond them; what is not a number is not counted.
    QList<QList<quint64>> histogram;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(CxHistoData::ExHistoDataFlags)
