// vantrel.Image.from_file with loaders that a host might have: what becomes of them, and of the frames that they give.

#include "CxImageFormatManager.h"
#include "plugins/support/InsideTest.h"

#include <QtCore/QPointer>

#include <functional>

static std::function<CxImageFileLoader*(const QString&)> makeLoader;

// Stands before the host's own function, for the plugin's objects in this program.
CxImageFileLoader* CxImageFormatManager::loaderForFile(const QString& path)
{
    return makeLoader(path);
}

namespace {

int livingLoaders = 0;

class Loader : public CxImageFileLoader
{
public:
    Loader(bool readable, QObject* frame)
        : m_readable(readable)
        , m_frame(frame)
    {
        ++livingLoaders;
    }
    ~Loader() override { --livingLoaders; }

    bool readFile() override { return m_readable; }
    QObject* frameAt(int index) override { return index == 0 ? m_frame.get() : nullptr; }

private:
    bool m_readable;
    std::unique_ptr<QObject> m_frame;
};

/// Gives this object as its copy.
class FrameWithCopy : public CxImageData
{
public:
    explicit FrameWithCopy(QObject* copy)
        : m_copy(copy)
    {
    }
    QObject* clone(QObject* /*parent*/, QThread* /*thread*/) override { return m_copy; }

private:
    QObject* m_copy;
};

class ImageFileLoaderTest : public InsideTest
{
protected:
    /// What from_file returns, and the image afterwards, which was one of 5 x 3 before.
    std::string load(bool readable, QObject* frame)
    {
        makeLoader = [this, readable, frame](const QString& path) {
            asked = path;
            return new Loader(readable, frame);
        };
        const QString result = run("img = vantrel.Image()\n"
                                   "img.alloc(5, 3, 1, 8)\n"
                                   "print(img.from_file('scene.x'), img)\n");
        EXPECT_EQ(livingLoaders, 0);
        return (output + result).toStdString();
    }

    const std::string empty = "None Vantrel image object is empty\n";
    QString asked;
};

TEST_F(ImageFileLoaderTest, TheImageIsACopyOfTheFirstFrameAndOutlivesTheLoader)
{
    EXPECT_EQ(load(true, makeTestImage(6, 2).release()),
              "None Vantrel image, width: 6, height: 2, channels: 1, bit per channel (bpc): 8, type: unsigned int\n");
    EXPECT_EQ(CxImageData::liveCount(), 0);
}

TEST_F(ImageFileLoaderTest, IsAskedForWithTheResolvedPath)
{
    environment.directory = QStringLiteral("/somewhere");
    load(true, nullptr);
    EXPECT_EQ(asked.toStdString(), "/somewhere/scene.x");
}

TEST_F(ImageFileLoaderTest, WithoutALoaderTheFileCannotBeOpenedAndTheImageIsKept)
{
    makeLoader = [](const QString& /*path*/) { return nullptr; };
    EXPECT_EQ(run("img = vantrel.Image()\n"
                  "img.alloc(5, 3, 1, 8)\n"
                  "try:\n"
                  "    img.from_file('scene.x')\n"
                  "except Exception as error:\n"
                  "    print(type(error).__name__, error, img.width)\n")
                  .toStdString(),
              "");
    EXPECT_EQ(output.toStdString(), "Exception cannot open file 5\n");
}

TEST_F(ImageFileLoaderTest, AFrameOfAFileThatCannotBeReadIsNotTaken)
{
    EXPECT_EQ(load(false, makeTestImage(6, 2).release()), empty);
    EXPECT_EQ(CxImageData::liveCount(), 0);
}

TEST_F(ImageFileLoaderTest, AFrameThatIsNoImageLeavesTheObjectEmpty)
{
    EXPECT_EQ(load(true, nullptr), empty);
    EXPECT_EQ(load(true, new QObject), empty);
}

TEST_F(ImageFileLoaderTest, AFrameThatCannotBeCopiedLeavesTheObjectEmpty)
{
    EXPECT_EQ(load(true, new FrameWithCopy(nullptr)), empty);
    const QPointer<QObject> noImage = new QObject;
    EXPECT_EQ(load(true, new FrameWithCopy(noImage)), empty);
    EXPECT_FALSE(noImage) << "nobody else deletes it";
}

} // namespace
