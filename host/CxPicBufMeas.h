#pragma once

#include "CxHistoData.h"
#include "CxProfileData.h"

#include <QtCore/QRect>

class CxImageData;

/// Measurements on images. Rectangles are clipped to the image; one that lies wholly outside fails.
///
/// Scripts choose the corners, which may be any integers and the right one left of the left one. QRect's own width,
/// height and intersections overflow for some of them: compare the corners.
class VANTREL_HOST_EXPORT CxPicBufMeas
{
public:
    CxPicBufMeas() = delete;

    /// Measures a rectangle. True on success; false for an image without pixels or a rectangle outside it.
    static bool measureHistogram(CxHistoData& result, const CxImageData* image, const QRect& rect,
                                 CxHistoData::ExHistoDataFlags flags);

    /// Measures every row (rows) or every column of a rectangle. True on success, as above.
    static bool measureRowsColumnsProfileStats(bool rows, CxProfileData& result, const CxImageData* image,
                                               const QRect& rect);
};
