#pragma once

#include "OwnedPicBuf.h"

#include <QtCore/QList>

/// The pixel types that a file format can store.
struct StorableTypes {
    /// The types in order of preference.
    QList<ExImageDataType> types;
    /// Whether deeper unsigned values may be scaled to 8 bits, in formats for pictures to look at.
    bool scalesToBytes = false;
};

/// The pixels in a type that the format can store, chosen in this order: their own type; 8-bit colour for packed
/// colours; 8 bits with scaling for unsigned values, if the format allows it; the first type that holds every value
/// unchanged. A record without pixels if there is none. converted owns the memory of converted pixels. Throws
/// std::bad_alloc.
SxPicBuf storablePixels(const SxPicBuf& pixels, const StorableTypes& format, OwnedPicBuf& converted);
