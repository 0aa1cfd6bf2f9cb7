#include "FileReplacement.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

/// Of the target's name in that of the temporary file: even in four bytes each they leave room for the rest.
constexpr qsizetype nameLength = 50;

constexpr int mostAttempts = 100;

template<typename Call>
auto retried(Call call) // a signal interrupts calls
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

/// What the temporary file of a path is called, other at each call. It is hidden: a script that watches a folder for
/// pictures must not find half of one.
QString temporaryName(const QString& path)
{
    const QFileInfo info(path);
    const QString random = QString::number(QRandomGenerator::system()->generate64(), 36);
    const QString suffix = info.suffix().isEmpty() ? QString() : QLatin1Char('.') + info.suffix().left(nameLength / 5);
    return QLatin1Char('.') + info.completeBaseName().left(nameLength) + QLatin1Char('.') + random + suffix;
}

} // namespace

FileReplacement::FileReplacement(QString path)
    : m_path(std::move(path))
{
}

FileReplacement::~FileReplacement()
{
    if (m_fd >= 0)
        close(m_fd);
    if (!m_temporaryPath.isEmpty())
        QFile::remove(m_temporaryPath);
}

FileProblem FileReplacement::begin()
{
    FileProblem problem = findTarget();
    return problem ? problem : create();
}

/// Follows links, and looks whether the target may be replaced.
FileProblem FileReplacement::findTarget()
{
    if (m_path.isEmpty())
        return FileProblem::EmptyName;
    constexpr int mostLinks = 40; // as many as the system follows
    QFileInfo target(m_path);
    for (int links = 0; target.isSymLink(); ++links) {
        if (links == mostLinks)
            return FileProblem::fromErrno(ELOOP);
        target.setFile(target.symLinkTarget());
    }
    struct stat folder = {};
    if (stat(QFile::encodeName(target.absolutePath()).constData(), &folder) != 0) {
        FileProblem problem = FileProblem::fromErrno(errno);
        return problem.kind() == FileProblem::Missing ? FileProblem::MissingFolder : problem;
    }
    if (!S_ISDIR(folder.st_mode))
        return FileProblem::MissingFolder;
    if (target.isDir())
        return FileProblem::Folder;
    if (target.exists() && !target.isFile()) // a rename would destroy a device or a pipe
        return FileProblem::NotRegular;
    m_target = QFileInfo(target.absolutePath()).canonicalFilePath() + QLatin1Char('/') + target.fileName();
    // The folder alone decides whether a file can be replaced; a protected file stays all the same.
    if (target.exists() && faccessat(AT_FDCWD, QFile::encodeName(m_target).constData(), W_OK, AT_EACCESS) != 0)
        return FileProblem::fromErrno(errno);
    return {};
}

FileProblem FileReplacement::create()
{
    struct stat old = {};
    const bool replaces = stat(QFile::encodeName(m_target).constData(), &old) == 0;
    const QString folder = QFileInfo(m_target).absolutePath();
    for (int attempt = 0; attempt < mostAttempts && m_fd < 0; ++attempt) {
        const QString path = folder + QLatin1Char('/') + temporaryName(m_path);
        // The content of a protected file must not be readable for a moment.
        m_fd = open(QFile::encodeName(path).constData(), O_RDWR | O_APPEND | O_CREAT | O_EXCL | O_CLOEXEC,
                    replaces ? 0600 : 0666);
        if (m_fd >= 0)
            m_temporaryPath = path;
        else if (errno != EEXIST && errno != EINTR)
            break;
    }
    if (m_fd < 0)
        return FileProblem::fromErrno(errno);
    if (replaces) {
        // Only an administrator may give files away; everybody else keeps the new file. A change of the owner clears
        // some permissions, so it goes first.
        if (fchown(m_fd, old.st_uid, old.st_gid) != 0 && fchown(m_fd, uid_t(-1), old.st_gid) != 0)
            old.st_mode &= ~mode_t(S_ISUID | S_ISGID);
        fchmod(m_fd, old.st_mode & 07777); // some file systems have no permissions
    }
    return {};
}

FileProblem FileReplacement::append(const QByteArray& bytes)
{
    const char* next = bytes.constData();
    const char* const end = next + bytes.size();
    while (next < end) {
        const ssize_t written = retried([&] { return ::write(m_fd, next, std::size_t(end - next)); });
        if (written < 0)
            return FileProblem::fromErrno(errno);
        next += written;
    }
    return {};
}

FileProblem FileReplacement::complete()
{
    // Without this a crash of the machine could leave the new name with no content. Some file systems cannot do it.
    if (retried([&] { return fsync(m_fd); }) != 0 && errno != EINVAL && errno != ENOTSUP)
        return FileProblem::fromErrno(errno);
    // Network file systems report a full disk when the file is closed. The descriptor is gone in any case.
    if (close(std::exchange(m_fd, -1)) != 0 && errno != EINTR)
        return FileProblem::fromErrno(errno);
    if (std::rename(QFile::encodeName(m_temporaryPath).constData(), QFile::encodeName(m_target).constData()) != 0)
        return FileProblem::fromErrno(errno);
    m_temporaryPath.clear();
    return {};
}

FileProblem replaceFile(const QString& path, const QByteArray& bytes)
{
    FileReplacement file(path);
    FileProblem problem = file.begin();
    if (!problem)
        problem = file.append(bytes);
    return problem ? problem : file.complete();
}
