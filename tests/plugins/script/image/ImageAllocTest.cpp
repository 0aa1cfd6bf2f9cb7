// vantrel.Image.alloc.

#include "support/ScriptTest.h"

namespace {

class ImageAlloc : public SharedScriptTest
{
protected:
    /// The error of an alloc with these arguments on an image of 5 x 3, and what the image shows afterwards.
    std::string errorOf(const std::string& arguments)
    {
        const QString result = host.run(QString::fromStdString("img = vantrel.Image()\n"
                                                               "img.alloc(5, 3, 1, 8)\n"
                                                               "try:\n"
                                                               "    img.alloc(" +
                                                               arguments +
                                                               ")\n"
                                                               "except BaseException as error:\n"
                                                               "    print(type(error).__name__, error, sep=': ')\n"
                                                               "print(img.width, img.height, end='')\n"));
        return (host.printed() + result).toStdString();
    }
};

TEST_F(ImageAlloc, Of4By2By1By12GivesAnUnsigned16BitImageWithBpc12)
{
    EXPECT_CLEAN_RUN("img = vantrel.Image()\n"
                     "print(img.alloc(4, 2, 1, 12))\n"
                     "print(img.width, img.height, img.channels, img.bpc, img.get_bytes_per_pixel(), img.rgb)\n"
                     "print(img.data_saturation, img.__array_interface__['typestr'])\n"
                     "print(img)\n");
    EXPECT_EQ(host.printed().toStdString(), "None\n4 2 1 12 2 False\n4095.0 |u2\n"
                                            "Vantrel image, width: 4, height: 2, channels: 1, bit per channel (bpc): "
                                            "12, type: unsigned int\n");
}

TEST_F(ImageAlloc, Of4By2By3By8SetsRgbAndTheTextFormEndsInUnsignedIntRgb)
{
    EXPECT_CLEAN_RUN("img = vantrel.Image()\n"
                     "img.alloc(4, 2, 3, 8)\n"
                     "print(img.rgb, str(img).endswith('type: unsigned int RGB'))\n");
    EXPECT_EQ(host.printed().toStdString(), "True True\n");
}

TEST_F(ImageAlloc, IsColourForThreeAndFourChannelsOnly)
{
    EXPECT_CLEAN_RUN("img = vantrel.Image()\n"
                     "for channels in range(1, 7):\n"
                     "    img.alloc(4, 2, channels, 8)\n"
                     "    print(channels, img.rgb, img.channels)\n");
    EXPECT_EQ(host.printed().toStdString(), "1 False 1\n2 False 2\n3 True 3\n4 True 4\n5 False 5\n6 False 6\n");
}

TEST_F(ImageAlloc, ChoosesTheTypeFromTheBits)
{
    EXPECT_CLEAN_RUN("img = vantrel.Image()\n"
                     "for bpc in (1, 7, 8, 9, 15, 16, 17, 31, 32):\n"
                     "    img.alloc(1, 1, 1, bpc)\n"
                     "    print(bpc, img.bpc, img.__array_interface__['typestr'])\n");
    EXPECT_EQ(host.printed().toStdString(), "1 1 |u1\n7 7 |u1\n8 8 |u1\n9 9 |u2\n15 15 |u2\n16 16 |u2\n17 17 |u4\n"
                                            "31 31 |u4\n32 32 |u4\n");
}

TEST_F(ImageAlloc, GivesBlackPixelsWithoutMetadata)
{
    EXPECT_CLEAN_RUN("img = vantrel.Image()\n"
                     "img.alloc(640, 48, 3, 16)\n"
                     "print(any(bytes(img)), img.black_level, img.frame_number, img.time_stamp)\n");
    EXPECT_EQ(host.printed().toStdString(), "False 0 0 0\n");
    EXPECT_EQ(value("(lambda i: (i.alloc(1, 1, 1, 8), i.gain_db))(vantrel.Image())"),
              "Exception: Vantrel image object is empty");
}

TEST_F(ImageAlloc, Of33BitsRaisesNumberOfBitsOutOfRange)
{
    EXPECT_EQ(errorOf("1, 1, 1, 33"), "Exception: number of bits out of range\n5 3");
    EXPECT_EQ(errorOf("1, 1, 1, 2147483647"), "Exception: number of bits out of range\n5 3");
}

TEST_F(ImageAlloc, OfWidth0RaisesArgumentOutOfRange)
{
    EXPECT_EQ(errorOf("0, 1, 1, 8"), "Exception: argument out of range\n5 3");
}

TEST_F(ImageAlloc, OfAnyZeroOrNegativeArgumentRaisesArgumentOutOfRange)
{
    for (const char* arguments : {"1, 0, 1, 8", "1, 1, 0, 8", "1, 1, 1, 0", "-1, 1, 1, 8", "1, -1, 1, 8", "1, 1, -1, 8",
                                  "1, 1, 1, -1", "-2147483648, 1, 1, 8"})
        EXPECT_EQ(errorOf(arguments), "Exception: argument out of range\n5 3") << arguments;
}

TEST_F(ImageAlloc, ChecksTheRangeOfAllArgumentsBeforeTheNumberOfBits)
{
    EXPECT_EQ(errorOf("0, 1, 1, 33"), "Exception: argument out of range\n5 3");
    EXPECT_EQ(errorOf("1, 1, -1, 33"), "Exception: argument out of range\n5 3");
}

TEST_F(ImageAlloc, ChecksTheNumberOfBitsBeforeItAllocates)
{
    EXPECT_EQ(errorOf("2147483647, 2147483647, 4, 33"), "Exception: number of bits out of range\n5 3");
}

TEST_F(ImageAlloc, NeedsFourWholeNumbers)
{
    EXPECT_EQ(errorOf("").substr(0, 10), "TypeError:");
    EXPECT_EQ(errorOf("1, 1, 1").substr(0, 10), "TypeError:");
    EXPECT_EQ(errorOf("1, 1, 1, 8, 8").substr(0, 10), "TypeError:");
    EXPECT_EQ(errorOf("1, 1, 1.0, 8").substr(0, 10), "TypeError:");
    EXPECT_EQ(errorOf("1, 1, '1', 8").substr(0, 10), "TypeError:");
    EXPECT_EQ(errorOf("2**31, 1, 1, 8").substr(0, 14), "OverflowError:");
}

TEST_F(ImageAlloc, OfMoreThanTheMachineCanAddressRaisesOutOfMemoryAndKeepsTheImage)
{
    const char* const expected = "Exception: cannot allocate new image, out of memory\n5 3";
    // The first two do not fit a line stride, the third asks for more than half the address space of the machine.
    EXPECT_EQ(errorOf("2147483647, 1, 4, 32"), expected);
    EXPECT_EQ(errorOf("1, 1, 2147483647, 32"), expected);
    EXPECT_EQ(errorOf("1073741823, 2147483647, 1, 32"), expected);
}

TEST_F(ImageAlloc, ReplacesTheOldImageAndFreesIt)
{
    const int before = CxImageData::liveCount();
    host.environment.onWait = [before](double) { EXPECT_EQ(CxImageData::liveCount(), before + 1); };
    EXPECT_CLEAN_RUN("img = vantrel.Image()\n"
                     "for i in range(1, 5):\n"
                     "    img.alloc(i, 1, 1, 8)\n"
                     "    vantrel.wait(0)\n"
                     "print(img.width)\n");
    EXPECT_EQ(host.environment.calls.size(), 4);
    EXPECT_EQ(host.printed().toStdString(), "4\n");
    EXPECT_EQ(CxImageData::liveCount(), before);
}

TEST_F(ImageAlloc, OnABorrowedImageLeavesThatImageToItsOwner)
{
    auto image = makeTestImage(6, 2);
    publish("img", *image);
    const int before = CxImageData::liveCount();
    EXPECT_CLEAN_RUN("img.alloc(4, 2, 1, 8)\nprint(img.width)\n");
    EXPECT_EQ(host.printed().toStdString(), "4\n");
    EXPECT_EQ(CxImageData::liveCount(), before + 1); // the variable survives the run, and owns its new image
    EXPECT_EQ(image->picBuf()->width, 6U);
    EXPECT_EQ(value("img.width"), "4");
    EXPECT_CLEAN_RUN("del img");
    EXPECT_EQ(CxImageData::liveCount(), before);
}

} // namespace
