#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

/// Looks at an image file before it is decoded: whether the format is one of those that the viewer reads, whether the
/// size in its header is sane, and whether the file is as long as the header says, as far as the format tells.
///
/// Decoders reserve memory for whatever a header promises, and some fill in the missing rest of a truncated file, so
/// both are found out here. Returns what is wrong in words that follow the file's name, or nothing.
QString imageFileProblem(const QByteArray& file);
