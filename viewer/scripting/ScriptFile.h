#pragma once

#include <QtCore/QString>

#include <optional>

/// Why the file cannot be read as a script, in one sentence; empty if it can.
QString problemWithScriptFile(const QString& path);

/// Reads a script file, which must be UTF-8 text. On failure returns nothing and sets problem to one sentence that says
/// why.
std::optional<QString> readScriptFile(const QString& path, QString& problem);
