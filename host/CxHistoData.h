#pragma once

#include "HostGlobal.h"

#include <QtCore/QFlags>
#include <QtCore/QList>
#include <QtCore/QString>

/// Statistics of a region, one set for each channel; filled by CxPicBufMeas::measureHistogram().
class VANTREL_HOST_EXPORT CxHistoData
{
public:
    /// One set of statistics, in units of the pixel values.
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
        Luminance = 4,          ///< add a channel of weighted brightness
        SubtractBlackLevel = 8, ///< measure values above the buffer's black level
    };
    Q_DECLARE_FLAGS(ExHistoDataFlags, ExHistoDataFlag)

    QList<QString> channelNames;     ///< Mono, or Blue, Green, Red, Alpha in the order of memory
    QList<CxPixelStats> stats;       ///< one for each name
    QList<QList<quint64>> histogram; ///< counts for each name, when asked for; 256 bins over the range of the type
};

Q_DECLARE_OPERATORS_FOR_FLAGS(CxHistoData::ExHistoDataFlags)
