#pragma once

struct SxPicBuf;

/// Converts a buffer into the smallest data type that holds its values.
///
/// Returns true when `out` was allocated and holds the converted pixels; it is then the caller's to free. Returns
/// false, with nothing allocated, when the type is the right one already or when memory is short. `in` keeps its
/// pixels; where the bits in use were counted, its bpc tells them afterwards. Who has counted them already gives them
/// as bitsInUse.
bool fx_img_convertToBestBpc(SxPicBuf& out, SxPicBuf& in, unsigned bitsInUse = 0);

/// Counts the bits in use over buffers that together make an image, where its type depends on them.
class BitsInUse
{
public:
    void look(const SxPicBuf& part);
    unsigned bits() const { return m_bits; } ///< 0 where the type does not depend on them alone

private:
    unsigned m_bits = 0;
};
