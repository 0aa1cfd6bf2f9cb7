#pragma once

#include "storage/FileProblem.h"

#include <QtCore/QByteArray>

/// Checks an image file before decoding: whether the viewer reads its format, whether the size in the header is sane,
/// and whether the file is as long as the header says, if the format allows this check.
///
/// Decoders allocate whatever memory a header claims, and some fill in the missing part of a truncated file; this check
/// prevents both.
///
/// file is the whole file. Of BMP and anymap files the header is enough. size is the length of the whole file in bytes.
FileProblem imageFileProblem(const QByteArray& file, qsizetype size);
