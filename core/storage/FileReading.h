#pragma once

#include "FileProblem.h"

#include <QtCore/QByteArray>

class QFile;

/// Opens a file for reading, unbuffered. Refuses devices and pipes, because reading one may never end, and files that
/// are larger than largest bytes.
VANTREL_HOST_EXPORT FileProblem openRegularFile(const QString& path, qint64 largest, QFile& file);

/// Appends the rest of an open file to bytes.
VANTREL_HOST_EXPORT FileProblem readOn(QFile& file, QByteArray& bytes);

/// Opens a file and reads all of it into bytes.
VANTREL_HOST_EXPORT FileProblem readWholeFile(const QString& path, qint64 largest, QByteArray& bytes);
