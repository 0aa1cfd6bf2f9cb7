#include "ImageFileFormat.h"

#include <array>

namespace {

struct Extension {
    const char* text;
    ImageFileFormat format;
};

constexpr std::array<Extension, 8> extensions = {{
    {"png", ImageFileFormat::Png},
    {"tif", ImageFileFormat::Tiff},
    {"tiff", ImageFileFormat::Tiff},
    {"jpg", ImageFileFormat::Jpeg},
    {"jpeg", ImageFileFormat::Jpeg},
    {"bmp", ImageFileFormat::Bmp},
    {"pgm", ImageFileFormat::Anymap},
    {"ppm", ImageFileFormat::Anymap},
}};

} // namespace

ImageFileFormat formatOfContent(const QByteArray& file)
{
    if (file.startsWith("\x89PNG\r\n\x1A\n"))
        return ImageFileFormat::Png;
    if (file.startsWith("\xFF\xD8\xFF"))
        return ImageFileFormat::Jpeg;
    if (file.startsWith(QByteArray("II*\0", 4)) || file.startsWith(QByteArray("MM\0*", 4)))
        return ImageFileFormat::Tiff;
    if (file.startsWith("BM"))
        return ImageFileFormat::Bmp;
    if (file.size() > 2 && file[0] == 'P' && file[1] >= '1' && file[1] <= '6')
        return ImageFileFormat::Anymap;
    return ImageFileFormat::Unknown;
}

ImageFileFormat formatOfExtension(const QString& extension)
{
    for (const Extension& known : extensions)
        if (extension == QLatin1String(known.text))
            return known.format;
    return ImageFileFormat::Unknown;
}

QStringList imageFileExtensions()
{
    QStringList list;
    for (const Extension& known : extensions)
        list.append(QString::fromLatin1(known.text));
    return list;
}
