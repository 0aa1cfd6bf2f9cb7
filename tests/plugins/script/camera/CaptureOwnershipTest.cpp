// Who owns a captured image at which moment: the record, its pixels and the image made of them.

#include "CxPicBufAPI.h"
#include "plugins/support/CameraScriptTest.h"
#include "plugins/support/HeapWatch.h"
#include "support/LogCapture.h"

#include <malloc.h>
#include <stdexcept>

namespace {

constexpr const char* ended = "Python rasied exception";

/// Gives a large image and tells what has become of its record when the view is to be opened.
class CapturingDelegate : public FakeDelegate
{
public:
    SxPicBuf* askUserCaptureImage(QWidget* /*parent*/, void* /*camera*/, QString* /*title*/, QString* /*message*/,
                                  bool /*optionGiven*/, int* /*option*/, int /*flags*/) override
    {
        auto record = std::make_unique<SxPicBuf>();
        CxPicBufAPI::AllocPicBufFromHeap(*record, 8192, 8192, 1, ExImageDataType::UInt8, 0, 0, 8,
                                         ExDataStorageFormat::Interleaved, ExColorFilterArray::None, false, false, 0);
        HeapWatch::watch(record.get());
        if (noMemoryAfterwards)
            HeapWatch::failNext();
        return record.release();
    }

    bool newViewWithImage(CxImageData* image, const QString& title) override
    {
        recordWasFreed = HeapWatch::wasFreed();
        shownPixels = image->picBuf() && image->picBuf()->data;
        if (throws)
            throw std::runtime_error("no view");
        return FakeDelegate::newViewWithImage(image, title);
    }

    bool noMemoryAfterwards = false;
    bool throws = false;
    bool recordWasFreed = false;
    bool shownPixels = false;
};

class CaptureOwnership : public CameraScriptTest
{
protected:
    /// Bytes of the large blocks that the C heap has given out. Always 0 under the address sanitizer, which finds
    /// leaks itself.
    static std::size_t largeBlocks() { return mallinfo2().hblkhd; }

    QString capture() { return host.run("cam = vantrel.Camera()\ncam.open_device()\ncam.ask_user_capture_image()"); }

    CapturingDelegate delegate;
};

TEST_F(CaptureOwnership, TheRecordIsFreedBeforeTheViewIsOpened)
{
    EXPECT_EQ(capture().toStdString(), "");
    EXPECT_TRUE(delegate.recordWasFreed);
    EXPECT_TRUE(delegate.shownPixels);
    EXPECT_EQ(delegate.views.size(), 1U);
}

TEST_F(CaptureOwnership, AnImageThatIsNotShownIsFreed)
{
    const std::size_t before = largeBlocks();
    delegate.accepts = false;
    EXPECT_EQ(capture().toStdString(), "");
    EXPECT_TRUE(HeapWatch::wasFreed());
    EXPECT_EQ(CxImageData::liveCount(), 0);
    EXPECT_EQ(largeBlocks(), before);
}

TEST_F(CaptureOwnership, PixelsAreFreedWhenThereIsNoMemoryForTheImage)
{
    const std::size_t before = largeBlocks();
    delegate.noMemoryAfterwards = true;
    const LogCapture log;
    EXPECT_EQ(capture().toStdString(), ended);
    EXPECT_TRUE(HeapWatch::wasFreed());
    EXPECT_EQ(CxImageData::liveCount(), 0);
    EXPECT_EQ(largeBlocks(), before);
}

TEST_F(CaptureOwnership, AnImageIsFreedOnceWhenTheHostThrowsInsteadOfShowingIt)
{
    const std::size_t before = largeBlocks();
    delegate.throws = true;
    const LogCapture log;
    EXPECT_EQ(capture().toStdString(), ended);
    EXPECT_EQ(CxImageData::liveCount(), 0);
    EXPECT_EQ(largeBlocks(), before);
    EXPECT_EQ(host.run("img = vantrel.Image()\nimg.alloc(4, 3, 1, 8)\nvantrel.new_view_with_image(img)").toStdString(),
              ended);
    delegate.throws = false;
    EXPECT_EQ(host.run("del img").toStdString(), "") << "the names of a run that was ended stay";
    EXPECT_EQ(capture().toStdString(), "");
    EXPECT_EQ(CxImageData::liveCount(), 1) << "the one that is shown";
}

} // namespace
