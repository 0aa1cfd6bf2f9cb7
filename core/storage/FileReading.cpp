#include "FileReading.h"

#include <QtCore/QFile>
#include <QtCore/QLocale>

#include <cerrno>
#include <sys/stat.h>

FileProblem openRegularFile(const QString& path, qint64 largest, QFile& file)
{
    if (path.isEmpty())
        return FileProblem::EmptyName;
    struct stat status = {};
    if (stat(QFile::encodeName(path).constData(), &status) != 0)
        return FileProblem::fromErrno(errno);
    if (S_ISDIR(status.st_mode))
        return FileProblem::Folder;
    if (!S_ISREG(status.st_mode))
        return FileProblem::NotRegular;
    file.setFileName(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        if (file.error() == QFileDevice::PermissionsError)
            return FileProblem::Denied;
        return {FileProblem::System, file.errorString()};
    }
    if (file.size() > largest)
        return {FileProblem::LargeFile, QLocale::c().formattedDataSize(largest)};
    return {};
}

FileProblem readWholeFile(const QString& path, qint64 largest, QByteArray& bytes)
{
    QFile file;
    FileProblem problem = openRegularFile(path, largest, file);
    return problem ? problem : readOn(file, bytes);
}

FileProblem readOn(QFile& file, QByteArray& bytes)
{
    bytes += file.readAll();
    if (file.error() != QFileDevice::NoError)
        return {FileProblem::System, file.errorString()};
    return {};
}
