#pragma once

#include "FileProblem.h"

#include <QtCore/QByteArray>

/// Reads a whole file into bytes. Refuses devices and pipes, because reading one may never end, and files that are
/// larger than largest bytes.
VANTREL_HOST_EXPORT FileProblem readWholeFile(const QString& path, qint64 largest, QByteArray& bytes);
