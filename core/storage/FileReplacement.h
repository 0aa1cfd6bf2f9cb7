#pragma once

#include "FileProblem.h"

#include <QtCore/QByteArray>

/// Replaces a file as a whole: the content goes to a temporary file in the same folder, which takes the place of the
/// target when it is complete. Until then, and after every failure, the target is as it was. All files that the
/// application saves are written this way.
///
/// A symbolic link stays, and its target is replaced. The new file has the permissions of the old one and, where the
/// process may set it, its owner. Hard links and extended attributes of the old file do not survive.
///
/// If the process is killed, the temporary file stays behind: its name begins with a dot and the name of the target.
class VANTREL_HOST_EXPORT FileReplacement
{
public:
    explicit FileReplacement(QString path);

    /// Removes the temporary file unless complete() has succeeded.
    ~FileReplacement();

    /// Creates the temporary file. Fails if the target is something else than a regular file, if it is write-protected,
    /// or if its folder does not take the temporary file.
    FileProblem begin();

    /// The temporary file, for writers that open files by name. It has the extension of the path.
    const QString& temporaryPath() const { return m_temporaryPath; }

    /// The file that is replaced: the path without links.
    const QString& target() const { return m_target; }

    /// Appends to the temporary file.
    FileProblem append(const QByteArray& bytes);

    /// Waits until the temporary file is on the disk, and puts it into the place of the target.
    FileProblem complete();

    /// Leaves the temporary file where it is.
    void keepTemporary() { m_temporaryPath.clear(); }

private:
    FileProblem findTarget();
    FileProblem create();

    QString m_path;
    QString m_target;
    QString m_temporaryPath;
    int m_fd = -1;
    Q_DISABLE_COPY_MOVE(FileReplacement)
};

/// Replaces a file by these bytes.
VANTREL_HOST_EXPORT FileProblem replaceFile(const QString& path, const QByteArray& bytes);
