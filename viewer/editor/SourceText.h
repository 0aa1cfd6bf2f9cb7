#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

/// The text of a Python file. Files come back from it with the bytes that they had.
struct SourceText {
    QString text;         ///< with the line ends of the file
    bool hasMark = false; ///< whether the file begins with the mark of UTF-8

    /// Decodes a file as Python does: UTF-8, unless a comment in the first two lines names another encoding. Returns
    /// nothing if the text could not be written back unchanged; problem is then the reason, as the end of a sentence.
    static std::optional<SourceText> decoded(const QByteArray& bytes, QString& problem);

    /// Encodes the text as it declares itself. Returns nothing if the encoding lacks a character; problem is then the
    /// reason, as the end of a sentence.
    std::optional<QByteArray> encoded(QString& problem) const;
};
