#pragma once

#include <QtCore/QString>

#include <optional>

/// Reads the text of a script file. On failure nothing, and problem says in one sentence why.
std::optional<QString> readScriptFile(const QString& path, QString& problem);
