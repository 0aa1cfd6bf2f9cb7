#pragma once

#include "HostGlobal.h"
#include "SxPicBuf.h"

// Codes of the camera programming interface for what a buffer holds.

/// Image format of a layout: 1 to 3 for grey of 8, 16 and 32 bits, 4 for colour with three channels of 8 bits, 5 with
/// four, 6 and 7 the same with 16 bits, 8 and 9 for grey of 32 and 64 bits floating point, 10 for packed 5-6-5 colour;
/// 0 for any other layout.
VANTREL_HOST_EXPORT int zuCore_GetZuImgFormatForPicBufInfo(const SxPicBufInfo& info);

/// Colour filter arrangement: 0 none, 1 RGGB, 2 GRBG, 3 GBRG, 4 BGGR; -1 for an unknown one.
VANTREL_HOST_EXPORT int zuCore_GetZuCfaFromColorFilterArray(ExColorFilterArray array);

/// Sign mode of values: 0 unsigned, 1 signed, 2 floating point.
VANTREL_HOST_EXPORT int zuCore_GetZuDataSmFromDataType(ExImageDataType dataType);
