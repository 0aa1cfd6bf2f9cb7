// Who deletes the images behind the objects of a script.

#include "support/Leftovers.h"
#include "support/ScriptTest.h"

#include <QtCore/QLibrary>
#include <QtCore/QTemporaryDir>

namespace {

class ImageOwnership : public ScriptTest
{
};

TEST_F(ImageOwnership, APublishedImageIsVisibleToEveryLaterRunAndNeverDeleted)
{
    auto image = makeTestImage(6, 2);
    const int before = CxImageData::liveCount();
    publish("img", *image);
    EXPECT_EQ(value("img.width"), "6");
    EXPECT_EQ(value("img.width"), "6");
    EXPECT_CLEAN_RUN("del img");
    EXPECT_EQ(value("img"), "NameError: name 'img' is not defined");
    EXPECT_EQ(CxImageData::liveCount(), before);
    EXPECT_EQ(image->picBuf()->width, 6U);
}

TEST_F(ImageOwnership, APublishedImageCanBeReplacedByAnother)
{
    auto first = makeTestImage(6, 2);
    auto second = makeTestImage(7, 2);
    const int before = CxImageData::liveCount();
    publish("img", *first);
    publish("img", *second);
    EXPECT_EQ(value("img.width"), "7");
    EXPECT_EQ(CxImageData::liveCount(), before);
}

TEST_F(ImageOwnership, APublishedImageIsTheHostsOwnAndNoCopy)
{
    auto image = makeTestImage(6, 2);
    publish("img", *image);
    EXPECT_EQ(value("img.bp"), std::to_string(reinterpret_cast<std::uintptr_t>(image->picBuf()->data)));
}

TEST_F(ImageOwnership, APublishedImageMayHaveANameThatIsNoIdentifier)
{
    auto image = makeTestImage(6, 2);
    publish("my imäge", *image);
    EXPECT_EQ(value("globals()['my im\\u00e4ge'].width"), "6");
}

TEST_F(ImageOwnership, APublishedImageIsNotDeletedWithTheInterpreter)
{
    auto image = makeTestImage(6, 2);
    const int before = CxImageData::liveCount();
    publish("img", *image);
    host.restart();
    EXPECT_EQ(CxImageData::liveCount(), before);
    EXPECT_CLEAN_RUN("print('img' in globals())");
    EXPECT_EQ(host.printed().toStdString(), "False\n");
}

TEST_F(ImageOwnership, APublishedImageStaysItsOwnersWhenTheObjectIsFilledAnew)
{
    const QTemporaryDir folder;
    host.environment.directory = folder.path();
    auto image = makeTestImage(6, 2);
    const int before = CxImageData::liveCount();
    for (const char* fill : {"img.from_array([[1, 2, 3]])", "img.from_file('missing.png')"}) {
        publish("img", *image);
        EXPECT_CLEAN_RUN(fill);
        EXPECT_CLEAN_RUN("del img");
        EXPECT_EQ(CxImageData::liveCount(), before) << fill;
        EXPECT_EQ(image->picBuf()->width, 6U) << fill;
    }
}

TEST_F(ImageOwnership, APublishedImageIsWrittenInItsOwnPixels)
{
    auto image = makeTestImage(6, 4);
    publish("img", *image);
    EXPECT_CLEAN_RUN("img.set_pixel_value(201, 5, 3)\n"
                     "img.draw_pixel_line(202, 0, 0, 2, 0)\n"
                     "img.draw_pixel_rect(203, 1, 1, 3, 3)\n");
    EXPECT_EQ(image->picBuf()->row(3)[5], 201);
    EXPECT_EQ(image->picBuf()->row(0)[1], 202);
    EXPECT_EQ(image->picBuf()->row(2)[3], 203);
}

TEST_F(ImageOwnership, AnOwnedImageGoesWithTheLastReference)
{
    const int before = CxImageData::liveCount();
    QList<int> seen;
    host.environment.onWait = [&seen, before](double) { seen.append(CxImageData::liveCount() - before); };
    EXPECT_CLEAN_RUN("a = vantrel.Image()\n"
                     "a.alloc(4, 2, 1, 8)\n"
                     "b = [a]\n"
                     "vantrel.wait(0)\n"
                     "del a\n"
                     "vantrel.wait(0)\n"
                     "b.clear()\n"
                     "vantrel.wait(0)\n");
    EXPECT_EQ(seen, QList<int>({1, 1, 0}));
}

TEST_F(ImageOwnership, AnOwnedImageInAReferenceCycleGoesWithTheCycle)
{
    const int before = CxImageData::liveCount();
    EXPECT_CLEAN_RUN("import gc\n"
                     "img = vantrel.Image()\n"
                     "img.alloc(4, 2, 1, 8)\n"
                     "ring = [img]\n"
                     "ring.append(ring)\n"
                     "del img, ring\n"
                     "gc.collect()\n");
    EXPECT_EQ(CxImageData::liveCount(), before);
}

TEST_F(ImageOwnership, AnOwnedImageKeptByAModuleGoesWithTheInterpreter)
{
    const int before = CxImageData::liveCount();
    EXPECT_CLEAN_RUN("import sys\n"
                     "sys.kept_image = vantrel.Image()\n"
                     "sys.kept_image.alloc(4, 2, 1, 8)\n");
    EXPECT_EQ(CxImageData::liveCount(), before + 1);
    host.restart();
    EXPECT_CLEAN_RUN("");
    EXPECT_EQ(CxImageData::liveCount(), before);
}

TEST_F(ImageOwnership, AScriptThatRaisesFreesItsImages)
{
    const int before = CxImageData::liveCount();
    EXPECT_NE(host.run("def f():\n"
                       "    img = vantrel.Image()\n"
                       "    img.alloc(4, 2, 1, 8)\n"
                       "    raise ValueError\n"
                       "try:\n"
                       "    f()\n"
                       "except ValueError:\n"
                       "    pass\n"
                       "import gc\n"
                       "gc.collect()\n"
                       "raise KeyError\n"),
              QString());
    EXPECT_EQ(CxImageData::liveCount(), before);
}

TEST_F(ImageOwnership, InitCalledAgainEmptiesTheObjectWithoutReleasingTheImage)
{
    const int before = CxImageData::liveCount();
    EXPECT_CLEAN_RUN("img = vantrel.Image()\n"
                     "img.alloc(4, 2, 1, 8)\n"
                     "print(img.__init__('any', thing=1))\n"
                     "print(img)\n"
                     "img.alloc(6, 2, 1, 8)\n"
                     "print(img.width)\n");
    EXPECT_EQ(host.printed().toStdString(), "None\nVantrel image object is empty\n6\n");
    EXPECT_EQ(CxImageData::liveCount(), before + 1);
    expectLeftImages(1);
}

TEST_F(ImageOwnership, InitCalledOnABorrowedImageLeavesThatImageToItsOwner)
{
    auto image = makeTestImage(6, 2);
    publish("img", *image);
    EXPECT_CLEAN_RUN("img.__init__()\nprint(img)\n");
    EXPECT_EQ(host.printed().toStdString(), "Vantrel image object is empty\n");
    EXPECT_EQ(image->picBuf()->width, 6U);
}

TEST_F(ImageOwnership, EveryObjectKeepsOneReferenceToItsTypeOnPurpose)
{
    // Objects do not hand their own memory back, and with it goes the reference that each has to its type.
    EXPECT_CLEAN_RUN("import sys\n"
                     "before = sys.getrefcount(vantrel.Image)\n"
                     "for i in range(50):\n"
                     "    vantrel.Image()\n"
                     "print(sys.getrefcount(vantrel.Image) - before)\n");
    EXPECT_EQ(host.printed().toStdString(), "50\n");
}

// ---- the exported functions ----

struct OpaqueObject;

class ExportedImageFunctions : public ScriptTest
{
protected:
    ExportedImageFunctions()
        : m_library(host.loader.fileName())
        , create(resolve<decltype(create)>("fx_pyimg_createNewImageObject"))
        , imageOf(resolve<decltype(imageOf)>("fx_pyimg_getImageObjectData"))
        , release(resolve<decltype(release)>("Py_DecRef"))
    {
    }

    template<typename Function>
    Function resolve(const char* name)
    {
        return reinterpret_cast<Function>(m_library.resolve(name));
    }

private:
    QLibrary m_library;

protected:
    OpaqueObject* (*create)(CxImageData*, int);
    CxImageData* (*imageOf)(OpaqueObject*);
    void (*release)(OpaqueObject*);
};

TEST_F(ExportedImageFunctions, AreExported)
{
    EXPECT_TRUE(create);
    EXPECT_TRUE(imageOf);
}

TEST_F(ExportedImageFunctions, TheImageOfNullIsNull)
{
    EXPECT_EQ(imageOf(nullptr), nullptr);
}

TEST_F(ExportedImageFunctions, ACreatedObjectStandsForItsImage)
{
    auto image = makeTestImage(6, 2);
    OpaqueObject* object = create(image.get(), 0);
    ASSERT_TRUE(object);
    EXPECT_EQ(imageOf(object), image.get());
    release(object);
    EXPECT_EQ(image->picBuf()->width, 6U);
}

TEST_F(ExportedImageFunctions, AnObjectCreatedAsOwnerDeletesItsImage)
{
    const int before = CxImageData::liveCount();
    OpaqueObject* object = create(makeTestImage(6, 2).release(), 2); // any truth value
    ASSERT_TRUE(object);
    EXPECT_EQ(CxImageData::liveCount(), before + 1);
    release(object);
    EXPECT_EQ(CxImageData::liveCount(), before);
}

TEST_F(ExportedImageFunctions, AnObjectCreatedWithoutAnImageIsEmpty)
{
    OpaqueObject* object = create(nullptr, 1);
    ASSERT_TRUE(object);
    EXPECT_EQ(imageOf(object), nullptr);
    release(object);
}

TEST_F(ExportedImageFunctions, WhoStillHoldsTheAddressOfADeadObjectFindsItEmpty)
{
    OpaqueObject* object = create(makeTestImage(6, 2).release(), 1);
    ASSERT_TRUE(object);
    release(object);
    EXPECT_EQ(imageOf(object), nullptr);
}

} // namespace
