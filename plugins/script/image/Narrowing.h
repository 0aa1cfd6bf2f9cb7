#pragma once

struct SxPicBuf;

/// Converts a buffer into the smallest data type that holds its values.
///
/// Returns true if `out` holds the converted pixels; the caller then frees `out`. Returns false, with nothing
/// allocated, if the type is already right or the conversion fails, for example for lack of memory. `in` keeps its
/// pixels. If the function counts the bits in use, it stores the count in the bpc of `in`.
bool fx_img_convertToBestBpc(SxPicBuf& out, SxPicBuf& in);
