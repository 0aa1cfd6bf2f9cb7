#pragma once

#include "HostGlobal.h"
#include "SxPicBuf.h"

// Codes of the camera programming interface for the contents of a buffer.

/// Image format of a layout. Grey: 1, 2 and 3 for integers of 8, 16 and 32 bits, 8 for float, 9 for double. Colour of
/// three and four channels: 4 and 5 with 8 bits, 6 and 7 with 16 bits. 10 for packed 5-6-5 colour; 0 for any other
/// layout.
VANTREL_HOST_EXPORT int zuCore_GetZuImgFormatForPicBufInfo(const SxPicBufInfo& info);

/// Colour filter arrangement: 0 none, 1 RGGB, 2 GRBG, 3 GBRG, 4 BGGR; -1 if unknown.
VANTREL_HOST_EXPORT int zuCore_GetZuCfaFromColorFilterArray(ExColorFilterArray array);

/// Sign mode of values: 0 unsigned, 1 signed, 2 floating point.
VANTREL_HOST_EXPORT int zuCore_GetZuDataSmFromDataType(ExImageDataType dataType);
