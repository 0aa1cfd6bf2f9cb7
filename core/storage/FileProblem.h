#pragma once

#include "HostGlobal.h"

#include <QtCore/QString>

/// Why a file could not be read or written, for the log and for the window. Converts to true if there is a problem.
class VANTREL_HOST_EXPORT FileProblem
{
public:
    enum Kind {
        None,
        // what is at the path
        EmptyName,
        Missing,
        MissingFolder,
        Folder,
        NotRegular,
        // what the system refuses; System has the system's own text as its detail
        Denied,
        ReadOnlyDisk,
        FullDisk,
        UsedQuota,
        FileSizeLimit,
        LongName,
        System,
        // the content of a file
        Empty,
        Truncated,
        DamagedHeader,
        Damaged,
        DamagedSize,
        LargeHeader,
        LargeFile,
        NotAnImage,
        UnknownType,
        UnknownPixels,
        MissingCodecs,
        // an image that is to be saved
        NoPixels,
        Channels,
        LostDepth,
        NotEncoded,
        OutOfMemory,
    };

    FileProblem() = default;

    /// detail is for the kinds whose text has room for it: a size, a number of channels, an error of a library.
    FileProblem(Kind kind, QString detail = {});

    /// The problem that a system call has reported with errno.
    static FileProblem fromErrno(int error);

    Kind kind() const { return m_kind; }
    explicit operator bool() const { return m_kind != None; }

    /// The reason as a clause about the file, to be put after a colon: "it is truncated". Empty without a problem.
    QString text() const;

private:
    Kind m_kind = None;
    QString m_detail;
};

/// A loader or saver that keeps the reason why it failed. Others only write it to the log.
class VANTREL_HOST_EXPORT FileProblemSource
{
public:
    virtual ~FileProblemSource();

    /// The problem of the latest call that read or wrote the file.
    const FileProblem& problem() const { return m_problem; }

protected:
    FileProblemSource() = default;
    Q_DISABLE_COPY_MOVE(FileProblemSource)

    FileProblem m_problem;
};
