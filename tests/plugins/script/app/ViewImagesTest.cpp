// Images on their way between views and scripts: always copies.

#include "support/ScriptTest.h"

namespace {

class ViewImages : public ScriptTest
{
protected:
    std::uint8_t* pixels(int id) { return host.delegate.views[id]->image->picBuf()->data; }
};

/// Writes down how it is copied.
class NotingImage : public CxImageData
{
public:
    NotingImage()
    {
        SxPicBuf buffer;
        CxPicBufAPI::AllocPicBufFromHeap(buffer, imageInfo(5, 3), false, 0);
        setPicBuf(buffer);
    }

    QObject* clone(QObject* parent, QThread* thread) override
    {
        clones.append(parent || thread ? QStringLiteral("for somebody") : QStringLiteral("free"));
        return CxImageData::clone(parent, thread);
    }

    static inline QStringList clones;
};

const char* const writeFirstPixel = "import ctypes\n"
                                    "ctypes.c_uint8.from_address(img.bp).value = 77\n";

// ---- get_view_image ----

TEST_F(ViewImages, GetViewImageGivesACopyOfWhatTheActiveViewShows)
{
    const int id = host.delegate.addView(makeTestImage(5, 3));
    EXPECT_CLEAN_RUN("img = vantrel.get_view_image()\n"
                     "print(type(img) is vantrel.Image, img.width, img.height, bytes(img)[:5])\n"
                     "print(img.bp)\n");
    EXPECT_EQ(PluginHost::output.join(QString()).section(QLatin1Char('\n'), 0, 0).toStdString(),
              "True 5 3 b'\\x00\\x01\\x02\\x03\\x04'");
    EXPECT_NE(host.printed().section(QLatin1Char('\n'), 1, 1).toULongLong(), quintptr(pixels(id)));
}

TEST_F(ViewImages, GetViewImageTakesAView)
{
    const int first = host.delegate.addView(makeTestImage(5, 3));
    host.delegate.addView(makeTestImage(9, 3));
    EXPECT_EQ(value("vantrel.get_view_image(" + std::to_string(first) + ").width"), "5");
    EXPECT_EQ(value("vantrel.get_view_image(-4).width"), "9");
}

TEST_F(ViewImages, GetViewImageTakesTheFramesMetadataAlong)
{
    auto image = makeTestImage(5, 3);
    SxImageMetadata metadata;
    metadata.exposureTimeUs = 1234;
    image->setImageMetadata(&metadata);
    host.delegate.addView(std::move(image));
    EXPECT_EQ(value("vantrel.get_view_image().exposure_time_us"), "1234");
}

TEST_F(ViewImages, TheScriptsCopyIsFreedWithItsObject)
{
    host.delegate.addView(makeTestImage(5, 3));
    const int before = CxImageData::liveCount();
    EXPECT_CLEAN_RUN("img = vantrel.get_view_image()\nimg = vantrel.get_view_image()\n");
    EXPECT_EQ(CxImageData::liveCount(), before);
}

TEST_F(ViewImages, GetViewImageWithNoViewRaises)
{
    EXPECT_EQ(value("vantrel.get_view_image()"), "Exception: no view or view contains no image");
    host.delegate.addView(makeTestImage(5, 3));
    EXPECT_EQ(value("vantrel.get_view_image(987654)"), "Exception: no view or view contains no image");
}

TEST_F(ViewImages, GetViewImageOfAViewWithoutAnImageRaises)
{
    host.delegate.addView(nullptr);
    EXPECT_EQ(value("vantrel.get_view_image()"), "Exception: no view or view contains no image");
}

TEST_F(ViewImages, GetViewImageRaisesWhenTheCopyIsNull)
{
    host.delegate.addView(std::make_unique<UncopyableImage>(UncopyableImage::GivesNull));
    EXPECT_EQ(value("vantrel.get_view_image()"), "Exception: cannot allocate new image, out of memory");
}

TEST_F(ViewImages, GetViewImageRaisesWhenTheCopyIsNoImage)
{
    host.delegate.addView(std::make_unique<UncopyableImage>(UncopyableImage::GivesAnotherObject));
    EXPECT_EQ(value("vantrel.get_view_image()"), "Exception: cannot allocate new image, out of memory");
}

TEST_F(ViewImages, AViewWhoseImageHasNoBufferGivesAnEmptyObject)
{
    host.delegate.addView(std::make_unique<CxImageData>());
    EXPECT_EQ(value("str(vantrel.get_view_image())"), "'Vantrel image object is empty'");
}

TEST_F(ViewImages, ChangingTheImageFromGetViewImageDoesNotChangeTheViewUntilItIsPassedToSetViewImage)
{
    const int id = host.delegate.addView(makeTestImage(5, 3));
    EXPECT_CLEAN_RUN(
        QString(QStringLiteral("img = vantrel.get_view_image()\n") + QString::fromLatin1(writeFirstPixel)));
    EXPECT_EQ(pixels(id)[0], 0);
    EXPECT_CLEAN_RUN(QString(QStringLiteral("img = vantrel.get_view_image()\n") + QString::fromLatin1(writeFirstPixel) +
                             QStringLiteral("vantrel.set_view_image(img)\n")));
    EXPECT_EQ(pixels(id)[0], 77);
}

TEST_F(ViewImages, EveryCopyIsACloneThatBelongsToNobodyElse)
{
    host.delegate.addView(std::make_unique<NotingImage>());
    NotingImage image;
    publish("img", image);
    NotingImage::clones.clear();
    EXPECT_CLEAN_RUN("vantrel.get_view_image()");
    EXPECT_EQ(NotingImage::clones, QStringList({QStringLiteral("free")}));
    EXPECT_CLEAN_RUN("vantrel.set_view_image(img)\nvantrel.new_view_with_image(img)");
    EXPECT_EQ(NotingImage::clones,
              QStringList({QStringLiteral("free"), QStringLiteral("free"), QStringLiteral("free")}));
}

// ---- set_view_image ----

TEST_F(ViewImages, SetViewImageGivesTheViewACopyAndTheScriptKeepsItsOwn)
{
    const int id = host.delegate.addView(makeTestImage(5, 3));
    EXPECT_CLEAN_RUN(QString(QStringLiteral("img = vantrel.Image()\n"
                                            "img.alloc(7, 2, 1, 8)\n"
                                            "print(vantrel.set_view_image(img))\n") +
                             QString::fromLatin1(writeFirstPixel) +
                             QStringLiteral("print(img.width, bytes(img)[0])\n")));
    EXPECT_EQ(host.printed().toStdString(), "None\n7 77\n");
    EXPECT_EQ(host.delegate.calls, QStringList(QStringLiteral("setViewImage(%1)").arg(id)));
    EXPECT_EQ(host.delegate.views[id]->image->picBuf()->width, 7U);
    EXPECT_EQ(pixels(id)[0], 0);
}

TEST_F(ViewImages, SetViewImageTakesAView)
{
    const int first = host.delegate.addView(makeTestImage(5, 3));
    const int second = host.delegate.addView(makeTestImage(9, 3));
    EXPECT_EQ(value("vantrel.set_view_image(vantrel.get_view_image(), " + std::to_string(first) + ")"), "None");
    EXPECT_EQ(host.delegate.views[first]->image->picBuf()->width, 9U);
    EXPECT_EQ(host.delegate.views[second]->image->picBuf()->width, 9U);
}

TEST_F(ViewImages, SetViewImageWithNoViewHandsTheActiveIdOn)
{
    host.delegate.active = -5;
    auto image = makeTestImage(5, 3);
    publish("published", *image);
    EXPECT_EQ(value("vantrel.set_view_image(published, -1)"), "None");
    EXPECT_EQ(host.delegate.calls, QStringList(QStringLiteral("setViewImage(-5)")));
}

TEST_F(ViewImages, SetViewImageWithAnEmptyImageFailsWithoutAnException)
{
    host.delegate.addView(makeTestImage(5, 3));
    EXPECT_EQ(value("vantrel.set_view_image(vantrel.Image())"), "SystemError");
    EXPECT_TRUE(host.delegate.calls.empty());
    EXPECT_TRUE(host.delegate.lookups.empty());
}

TEST_F(ViewImages, SetViewImageWithAnObjectOfAnotherTypeFailsWithoutAnException)
{
    host.delegate.addView(makeTestImage(5, 3));
    for (const char* object : {"42", "None", "'text'", "[]", "vantrel.Image", "type('Image', (), {'imageData': 1})()",
                               "vantrel", "bytearray(1000)"}) {
        EXPECT_EQ(value(std::string("vantrel.set_view_image(") + object + ")"), "SystemError") << object;
        EXPECT_EQ(value(std::string("vantrel.new_view_with_image(") + object + ")"), "SystemError") << object;
    }
    EXPECT_TRUE(host.delegate.calls.empty());
}

TEST_F(ViewImages, SetViewImageRaisesWhenTheCopyFails)
{
    host.delegate.addView(makeTestImage(5, 3));
    UncopyableImage null(UncopyableImage::GivesNull);
    UncopyableImage other(UncopyableImage::GivesAnotherObject);
    publish("null", null);
    publish("other", other);
    EXPECT_EQ(value("vantrel.set_view_image(null)"), "Exception: cannot allocate new image, out of memory");
    EXPECT_EQ(value("vantrel.set_view_image(other)"), "Exception: cannot allocate new image, out of memory");
    EXPECT_TRUE(host.delegate.calls.empty());
}

TEST_F(ViewImages, SetViewImageNeedsAnImage)
{
    EXPECT_EQ(value("vantrel.set_view_image()").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.set_view_image(vantrel.Image(), 'a')").substr(0, 10), "TypeError:");
}

// ---- new_view_with_image ----

TEST_F(ViewImages, NewViewWithImageOpensAViewOnACopyAndReturnsTheActiveView)
{
    auto image = makeTestImage(5, 3);
    publish("img", *image);
    const std::string id = value("vantrel.new_view_with_image(img, 'T\\u00fcr')");
    EXPECT_EQ(id, std::to_string(host.delegate.active));
    ASSERT_EQ(host.delegate.views.size(), 1U);
    const FakeView& view = *host.delegate.views[host.delegate.active];
    EXPECT_EQ(view.title, QStringLiteral("Tür"));
    EXPECT_NE(view.image.get(), image.get());
    EXPECT_NE(view.image->picBuf()->data, image->picBuf()->data);
    EXPECT_EQ(view.image->picBuf()->width, 5U);
}

TEST_F(ViewImages, NewViewWithImageWithoutATitleNamesTheViewImageFromScript)
{
    auto image = makeTestImage(5, 3);
    publish("img", *image);
    EXPECT_CLEAN_RUN("vantrel.new_view_with_image(img)");
    EXPECT_EQ(host.delegate.calls, QStringList(QStringLiteral("newViewWithImage(Image from script)")));
}

TEST_F(ViewImages, NewViewWithImageWithAnEmptyTitleNamesTheViewImageFromScript)
{
    auto image = makeTestImage(5, 3);
    publish("img", *image);
    EXPECT_CLEAN_RUN("vantrel.new_view_with_image(img, '')");
    EXPECT_EQ(host.delegate.calls, QStringList(QStringLiteral("newViewWithImage(Image from script)")));
}

TEST_F(ViewImages, NewViewWithImageReturnsMinusOneAndFreesTheCopyWhenTheHostRefuses)
{
    auto image = makeTestImage(5, 3);
    publish("img", *image);
    host.delegate.accepts = false;
    const int before = CxImageData::liveCount();
    EXPECT_EQ(value("vantrel.new_view_with_image(img)"), "-1");
    EXPECT_EQ(CxImageData::liveCount(), before);
}

TEST_F(ViewImages, NewViewWithAnEmptyImageFailsWithoutAnException)
{
    EXPECT_EQ(value("vantrel.new_view_with_image(vantrel.Image(), 'a')"), "SystemError");
    EXPECT_TRUE(host.delegate.calls.empty());
}

TEST_F(ViewImages, NewViewWithImageRaisesWhenTheCopyFails)
{
    UncopyableImage null(UncopyableImage::GivesNull);
    UncopyableImage other(UncopyableImage::GivesAnotherObject);
    publish("null", null);
    publish("other", other);
    EXPECT_EQ(value("vantrel.new_view_with_image(null)"), "Exception: cannot allocate new image, out of memory");
    EXPECT_EQ(value("vantrel.new_view_with_image(other)"), "Exception: cannot allocate new image, out of memory");
    EXPECT_TRUE(host.delegate.views.empty());
}

TEST_F(ViewImages, NewViewWithImageNeedsATextAsTitle)
{
    EXPECT_EQ(value("vantrel.new_view_with_image()").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.new_view_with_image(vantrel.Image(), 3)").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.new_view_with_image(vantrel.Image(), None)").substr(0, 10), "TypeError:");
}

} // namespace
