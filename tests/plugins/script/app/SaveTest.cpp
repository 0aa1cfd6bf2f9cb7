// save_to_file: the target's folder, the active view's image, the saver.

#include "support/ScriptTest.h"

#include "CxImageFormatManager.h"

#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

namespace {

class SaveToFile : public ScriptTest
{
protected:
    SaveToFile() { host.environment.directory = folder.path(); }

    QString file(const char* name) { return folder.filePath(QString::fromUtf8(name)); }

    /// The pixels of a saved file without row padding, or nothing.
    QByteArray pixelsOf(const char* name)
    {
        const std::unique_ptr<CxImageFileLoader> loader(CxImageFormatManager::instance()->loaderForFile(file(name)));
        if (!loader || !loader->readFile())
            return QByteArray();
        auto* image = qobject_cast<CxImageData*>(loader->frameAt(0));
        return image ? pixelsOf(*image->picBuf()) : QByteArray();
    }

    static QByteArray pixelsOf(const SxPicBuf& buffer)
    {
        QByteArray bytes;
        for (unsigned y = 0; y < buffer.height; ++y)
            bytes.append(reinterpret_cast<const char*>(buffer.row(y)), buffer.bytesPerPixel() * buffer.width);
        return bytes;
    }

    QTemporaryDir folder;
};

TEST_F(SaveToFile, WritesTheActiveViewsImageAndReturnsNone)
{
    host.delegate.addView(makeTestImage(9, 7));
    const int id = host.delegate.addView(makeTestImage(5, 3, 1, ExImageDataType::UInt16, 12));
    EXPECT_EQ(value("vantrel.save_to_file('one/two/b\\u00fcld.png')"), "None");
    const QByteArray pixels = pixelsOf("one/two/büld.png");
    EXPECT_EQ(pixels.size(), 5 * 3 * 2);
    EXPECT_EQ(pixels, pixelsOf(*host.delegate.views[id]->image->picBuf()));
}

TEST_F(SaveToFile, MakesNoCopyOfTheImage)
{
    auto image = std::make_unique<UncopyableImage>();
    SxPicBuf buffer;
    ASSERT_TRUE(CxPicBufAPI::AllocPicBufFromHeap(buffer, imageInfo(5, 3), false, 0));
    image->setPicBuf(buffer);
    host.delegate.addView(std::move(image));
    EXPECT_EQ(value("vantrel.save_to_file('picture.tif')"), "None");
    EXPECT_EQ(pixelsOf("picture.tif"), QByteArray(15, 0));
}

TEST_F(SaveToFile, ReplacesAFileThatIsThere)
{
    host.delegate.addView(makeTestImage(5, 3));
    EXPECT_EQ(value("vantrel.save_to_file('picture.bmp')"), "None");
    host.delegate.addView(makeTestImage(6, 3));
    EXPECT_EQ(value("vantrel.save_to_file('picture.bmp')"), "None");
    EXPECT_EQ(pixelsOf("picture.bmp").size(), 18);
}

TEST_F(SaveToFile, ReturnsNoneAlsoWhenTheSaverCannotWrite)
{
    host.delegate.addView(makeTestImage(5, 3));
    EXPECT_EQ(value("vantrel.save_to_file('/proc/none/picture.png')"), "None");
    host.delegate.addView(std::make_unique<CxImageData>()); // without pixels
    EXPECT_EQ(value("vantrel.save_to_file('picture.png')"), "None");
    EXPECT_FALSE(QFileInfo::exists(file("picture.png")));
}

TEST_F(SaveToFile, ARelativePathTwoNewDirectoriesDeepCreatesBothBelowTheWorkingDirectory)
{
    host.delegate.addView(makeTestImage(4, 3));
    value("vantrel.save_to_file('one/two/picture.unknown')");
    EXPECT_TRUE(QFileInfo(file("one/two")).isDir());
    EXPECT_EQ(host.environment.resolved, QStringList(QStringLiteral("one/two/picture.unknown")));
}

TEST_F(SaveToFile, WithoutAnImageFailsWithoutAnExceptionAfterTheDirectoriesAreMade)
{
    EXPECT_EQ(value("vantrel.save_to_file('one/two/picture.png')"), "SystemError");
    EXPECT_TRUE(QFileInfo(file("one/two")).isDir());
    EXPECT_FALSE(QFileInfo::exists(file("one/two/picture.png")));
    EXPECT_EQ(host.delegate.lookups, QStringList({QStringLiteral("activeViewId()"), QStringLiteral("viewImage(-1)")}));
}

TEST_F(SaveToFile, OfAViewWithoutAnImageFailsWithoutAnException)
{
    host.delegate.addView(nullptr);
    EXPECT_EQ(value("vantrel.save_to_file('picture.png')"), "SystemError");
}

TEST_F(SaveToFile, WithoutASaverForTheNameFailsWithoutAnException)
{
    host.delegate.addView(makeTestImage(4, 3));
    expectValues({
        {"vantrel.save_to_file('picture.unknown')", "SystemError"},
        {"vantrel.save_to_file('picture')", "SystemError"},
        {"vantrel.save_to_file('')", "SystemError"},
    });
}

TEST_F(SaveToFile, IgnoresAFolderThatCannotBeMade)
{
    host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.save_to_file('/proc/none/two/picture.unknown')"), "SystemError");
}

TEST_F(SaveToFile, TakesOneText)
{
    EXPECT_EQ(value("vantrel.save_to_file()").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.save_to_file(1)").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.save_to_file('a', 'b')").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.save_to_file('a\\0b')"), "ValueError: embedded null character");
    EXPECT_TRUE(host.environment.resolved.empty());
}

} // namespace
