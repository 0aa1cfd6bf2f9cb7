#pragma once

#include "CxHistoData.h"
#include "CxProfileData.h"

#include <QtCore/QRect>

class CxImageData;

/// Measurements on images. Rectangles are in pixels and are clipped to the image.
///
/// Scripts choose the corners, which may be any integers, also with the right corner left of the left one. QRect's own
/// width, height and intersections overflow for some of them, so compare the corners.
class VANTREL_HOST_EXPORT CxPicBufMeas
{
public:
    CxPicBufMeas() = delete;

    /// Measures a rectangle. False, with an empty result, if the image has no pixels or the rectangle lies outside it.
    static bool measureHistogram(CxHistoData& result, const CxImageData* image, const QRect& rect,
                                 CxHistoData::ExHistoDataFlags flags);

    /// Measures every row (rows) or every column of a rectangle. Fails as measureHistogram() does.
    static bool measureRowsColumnsProfileStats(bool rows, CxProfileData& result, const CxImageData* image,
                                               const QRect& rect);
};
