#include "FileProblem.h"

#include <cerrno>
#include <system_error>
#include <utility>

namespace {

const char* textOf(FileProblem::Kind kind)
{
    switch (kind) {
    case FileProblem::None:
        return "";
    case FileProblem::EmptyName:
        return "the file name is empty";
    case FileProblem::Missing:
        return "it does not exist";
    case FileProblem::MissingFolder:
        return "its folder does not exist";
    case FileProblem::Folder:
        return "it is a folder";
    case FileProblem::NotRegular:
        return "it is not a regular file";
    case FileProblem::Denied:
        return "permission denied";
    case FileProblem::ReadOnlyDisk:
        return "the disk is read-only";
    case FileProblem::FullDisk:
        return "the disk is full";
    case FileProblem::UsedQuota:
        return "the disk quota is used up";
    case FileProblem::FileSizeLimit:
        return "it would be larger than files may be";
    case FileProblem::LongName:
        return "its name is too long";
    case FileProblem::System:
        return "%1";
    case FileProblem::Empty:
        return "it is empty";
    case FileProblem::Truncated:
        return "it is truncated";
    case FileProblem::DamagedHeader:
        return "it has a damaged header";
    case FileProblem::Damaged:
        return "it is damaged";
    case FileProblem::DamagedSize:
        return "it is damaged: its header says %1";
    case FileProblem::LargeHeader:
        return "it is too large: its header says %1";
    case FileProblem::LargeFile:
        return "it is larger than %1";
    case FileProblem::NotAnImage:
        return "it is not an image or is damaged";
    case FileProblem::UnknownType:
        return "its type is not supported; these are: %1";
    case FileProblem::UnknownPixels:
        return "it has pixel values of an unsupported type";
    case FileProblem::MissingCodecs:
        return "the library for image files cannot be loaded: %1";
    case FileProblem::NoPixels:
        return "the image has no pixels";
    case FileProblem::Channels:
        return "the image has %1 channels, but a file can hold 1, 3 or 4";
    case FileProblem::LostDepth:
        return "depth would be lost: the file format cannot hold the values of the image";
    case FileProblem::NotEncoded:
        return "the image cannot be encoded: %1";
    case FileProblem::OutOfMemory:
        return "it is too large for the available memory";
    }
    return "";
}

} // namespace

FileProblem::FileProblem(Kind kind, QString detail)
    : m_kind(kind)
    , m_detail(std::move(detail))
{
}

FileProblem FileProblem::fromErrno(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return Missing;
    case EACCES:
    case EPERM:
        return Denied;
    case EISDIR:
        return Folder;
    case EROFS:
        return ReadOnlyDisk;
    case ENOSPC:
        return FullDisk;
    case EDQUOT:
        return UsedQuota;
    case EFBIG:
        return FileSizeLimit;
    case ENAMETOOLONG:
        return LongName;
    case ENOMEM:
        return OutOfMemory;
    default:
        return {System, QString::fromStdString(std::generic_category().message(error))};
    }
}

QString FileProblem::text() const
{
    const QString text = QString::fromLatin1(textOf(m_kind));
    return m_detail.isNull() ? text : text.arg(m_detail);
}

FileProblemSource::~FileProblemSource() = default;
