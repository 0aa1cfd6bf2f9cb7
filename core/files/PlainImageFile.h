#pragma once

#include "ImageFileFormat.h"
#include "OwnedPicBuf.h"
#include "storage/FileProblem.h"

#include <QtCore/QByteArray>

#include <array>
#include <optional>

class QFile;

// Files that hold the pixels as the memory does, apart from the order of rows, colours and bytes: BMP without
// compression, grey or with 24 bits, and binary PGM and PPM. They are copied here. That gives the same pixels and the
// same files as the codecs, takes less time, and needs no library.

/// Where the pixels of such a file are, and how.
struct PlainImageLayout {
    using Greys = std::array<std::uint8_t, 256>;

    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t channels = 1;
    ExImageDataType type = ExImageDataType::UInt8;
    qsizetype begin = 0;
    qsizetype step = 0; ///< from one row to the next, in bytes
    bool bottomUp = false;
    bool redFirst = false;
    std::optional<Greys> greys; ///< what the values mean, if they are not the greys themselves
};

/// The layout that the head of a file describes. Nothing if the file is of another kind, if it is an unusual one whose
/// meaning the decoder decides, or if the head is too short. The numbers are not checked: imageFileProblem() does that.
std::optional<PlainImageLayout> plainImageLayout(const QByteArray& head);

/// Reads the pixels of an open file whose layout has been checked.
FileProblem readPlainImageFile(QFile& file, const PlainImageLayout& layout, OwnedPicBuf& pixels);

/// Whether a file of a format holds these pixels, which have unsigned values, one or three channels, and with BMP 8
/// bits.
bool isPlainImageFile(ImageFileFormat format, const SxPicBuf& pixels);

/// Replaces a file. maximum is the largest value, which PGM and PPM record.
FileProblem writePlainImageFile(const QString& path, ImageFileFormat format, const SxPicBuf& pixels, unsigned maximum);
