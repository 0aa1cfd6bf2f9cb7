#pragma once

#include "OwnedPicBuf.h"

#include <QtCore/QList>

/// Which pixels a file format can store.
struct StorableTypes {
    /// The types, those that are preferred first.
    QList<ExImageDataType> types;
    /// Whether deeper unsigned values may be scaled to 8 bits: for formats of pictures for the eye.
    bool scalesToBytes = false;
};

/// The pixels in a type that the format stores: as they are where it does; packed colours as 8-bit colours; else in the
/// first of the types that holds every single value unchanged; else scaled where that is allowed. A record without
/// pixels when there is no such type. converted owns the memory if new memory was needed. Throws std::bad_alloc.
SxPicBuf storablePixels(const SxPicBuf& pixels, const StorableTypes& format, OwnedPicBuf& converted);
