// What save_to_file does with the saver that the host gives it.

#include "support/ScriptTest.h"

#include "CxImageFormatManager.h"

namespace {

QStringList steps;
CxImageData* saved = nullptr;

/// Cannot write, and tells what it was asked.
class FailingSaver : public CxImageFileSaver
{
public:
    ~FailingSaver() override { steps.append(QStringLiteral("gone")); }

    bool saveImage(CxImageData* image, const QVariantMap* options) override
    {
        saved = image;
        steps.append(options ? QStringLiteral("asked with options") : QStringLiteral("asked"));
        return false;
    }
};

} // namespace

// Stands before the core library's own.
CxImageFileSaver* CxImageFormatManager::saverForFile(const QString& path)
{
    steps.append(QStringLiteral("saver for ") + path);
    return new FailingSaver;
}

namespace {

class Saver : public ScriptTest
{
};

TEST_F(Saver, IsAskedOnceForTheViewsOwnImageWithoutOptionsAndIsGoneAfterwards)
{
    steps.clear();
    host.environment.directory = QStringLiteral("/tmp");
    const int id = host.delegate.addView(makeTestImage(4, 3));
    EXPECT_CLEAN_RUN("print(vantrel.save_to_file('picture.any'))");
    EXPECT_EQ(steps.join(u'\n').toStdString(), "saver for /tmp/picture.any\nasked\ngone");
    EXPECT_EQ(saved, host.delegate.views[id]->image.get());
    EXPECT_EQ(host.printed().toStdString(), "None\n") << "also when it could not write";
}

TEST_F(Saver, IsAskedForAnImageWithoutPixelsToo)
{
    host.environment.directory = QStringLiteral("/tmp");
    CxImageData withoutBuffer;
    CxImageData withoutPixels;
    withoutPixels.setPicBuf(SxPicBuf());
    for (CxImageData* image : {&withoutBuffer, &withoutPixels}) {
        steps.clear();
        publish("img", *image);
        EXPECT_EQ(value("img.save_to_file('picture.any')"), "None");
        EXPECT_EQ(steps.join(u'\n').toStdString(), "saver for /tmp/picture.any\nasked\ngone");
        EXPECT_EQ(saved, image);
    }
}

TEST_F(Saver, IsNotAskedForAnEmptyObject)
{
    steps.clear();
    EXPECT_EQ(value("vantrel.Image().save_to_file('picture.any')"), "SystemError");
    EXPECT_EQ(steps, QStringList());
}

} // namespace
