#pragma once

struct SxPicBuf;

/// Converts a buffer into the smallest data type that holds its values.
///
/// Returns true when `out` was allocated and holds the converted pixels; it is then the caller's to free. Returns
/// false, with nothing allocated, when the type is the right one already or when memory is short. `in` keeps its
/// pixels; where the bits in use were counted, its bpc tells them afterwards.
bool fx_img_convertToBestBpc(SxPicBuf& out, SxPicBuf& in);
