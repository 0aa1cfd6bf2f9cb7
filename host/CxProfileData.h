#pragma once

#include "CxHistoData.h"

#include <QtCore/QList>
#include <QtCore/QString>

/// Statistics of every row or every column of a region; filled by CxPicBufMeas::measureRowsColumnsProfileStats().
class VANTREL_HOST_EXPORT CxProfileData
{
public:
    QList<QString> channelNames;                   ///< as in CxHistoData
    QList<QList<CxHistoData::CxPixelStats>> stats; ///< for each channel, one set for each profile
    int profileCount = 0;                          ///< number of rows or columns measured
};
