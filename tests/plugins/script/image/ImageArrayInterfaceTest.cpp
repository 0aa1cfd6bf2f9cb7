// vantrel.Image read by array libraries: the array interface, and NumPy where the interpreter has it.

#include "support/ScriptTest.h"

#include <cstring>

namespace {

class ArrayInterface : public SharedScriptTest
{
};

TEST_F(ArrayInterface, OfAThreeChannelImageOfWidth10AndLineStride32HasItsShapeAndStrides)
{
    const auto image = makeImage(imageInfo(10, 7, 3, ExImageDataType::UInt8, 32));
    publish("img", *image);
    expectValues({
        {"img.padding_x", "2"},
        {"img.__array_interface__['shape']", "(10, 7, 3)"},
        {"img.__array_interface__['strides']", "(3, 32, 1)"},
    });
}

TEST_F(ArrayInterface, OfAMonoImageHasTwoAxesXFirst)
{
    const auto image = makeImage(imageInfo(10, 7, 1, ExImageDataType::UInt16, 48));
    publish("img", *image);
    EXPECT_EQ(value("img.__array_interface__"),
              "{'shape': (10, 7), 'typestr': '|u2', 'data': (" +
                  std::to_string(reinterpret_cast<std::uintptr_t>(image->picBuf()->data)) +
                  ", 0), 'strides': (2, 48), 'version': 3}");
}

TEST_F(ArrayInterface, IsADictionaryOfItsOwnThatFollowsTheImage)
{
    const auto image = makeImage(imageInfo(10, 7, 1, ExImageDataType::UInt16, 48));
    publish("img", *image);
    EXPECT_EQ(value("(lambda a, b: (a is b, a.clear(), b['shape']))(img.__array_interface__, img.__array_interface__)"),
              "(False, None, (10, 7))");
    EXPECT_EQ(value("list(img.__array_interface__)"), "['shape', 'typestr', 'data', 'strides', 'version']");
    SxPicBuf* const buffer = image->picBuf();
    buffer->height = 6;
    EXPECT_EQ(value("img.__array_interface__['shape']"), "(10, 6)");
    buffer->width = 9;
    EXPECT_EQ(value("img.__array_interface__['shape']"), "(9, 6)");
    buffer->lineStride = 44;
    EXPECT_EQ(value("img.__array_interface__['strides']"), "(2, 44)");
    buffer->dataType = ExImageDataType::Int16;
    EXPECT_EQ(value("img.__array_interface__['typestr']"), "'|i2'");
    buffer->channels = 2;
    EXPECT_EQ(value("img.__array_interface__['shape']"), "(9, 6, 2)");
    ++buffer->data;
    EXPECT_EQ(value("img.__array_interface__['data'][0] == img.bp"), "True");
    --buffer->data;
}

TEST_F(ArrayInterface, OfPackedColourHasTwoAxesWhateverTheChannels)
{
    for (const unsigned channels : {1U, 3U}) {
        const auto image = makeImage(imageInfo(10, 7, channels, ExImageDataType::Packed565, 80));
        publish("img", *image);
        EXPECT_EQ(value("img.__array_interface__['shape']"), "(10, 7)");
        EXPECT_EQ(value("img.__array_interface__['strides']"), channels == 1 ? "(2, 80)" : "(6, 80)");
        host.run("del img");
    }
}

TEST_F(ArrayInterface, OfTwoAndMoreThanFourChannelsHasThreeAxes)
{
    for (const unsigned channels : {2U, 4U, 7U}) {
        const auto image = makeImage(imageInfo(3, 2, channels, ExImageDataType::Float, 128));
        publish("img", *image);
        const std::string count = std::to_string(channels);
        EXPECT_EQ(value("img.__array_interface__['shape']"), "(3, 2, " + count + ")");
        EXPECT_EQ(value("img.__array_interface__['strides']"), "(" + std::to_string(4 * channels) + ", 128, 4)");
        host.run("del img");
    }
}

TEST_F(ArrayInterface, WritesThroughItsAddressReachTheImage)
{
    const auto image = makeImage(imageInfo(10, 7, 3, ExImageDataType::UInt8, 32));
    publish("img", *image);
    EXPECT_CLEAN_RUN("import ctypes\n"
                     "a = img.__array_interface__\n"
                     "x, y, c = 4, 5, 2\n"
                     "offset = x * a['strides'][0] + y * a['strides'][1] + c * a['strides'][2]\n"
                     "ctypes.c_uint8.from_address(a['data'][0] + offset).value = 201\n");
    EXPECT_EQ(image->picBuf()->row(5)[4 * 3 + 2], 201);
}

struct TypeRow {
    unsigned type;
    const char* typestr;
    const char* dtype; // NumPy's name; empty where the two entries of the interface contradict each other
};

void PrintTo(const TypeRow& row, std::ostream* stream)
{
    *stream << row.type << ' ' << row.typestr;
}

class ArrayType : public SharedScriptTest, public testing::WithParamInterface<TypeRow>
{
};

TEST_P(ArrayType, HasItsTypestr)
{
    const auto mono = makeImage(imageInfo(3, 2, 1, ExImageDataType(GetParam().type)));
    const auto colour = makeImage(imageInfo(3, 2, 3, ExImageDataType(GetParam().type)));
    publish("mono", *mono);
    publish("colour", *colour);
    EXPECT_EQ(value("mono.__array_interface__['typestr']"), GetParam().typestr);
    EXPECT_EQ(value("colour.__array_interface__['typestr']"), GetParam().typestr);
}

INSTANTIATE_TEST_SUITE_P(Types, ArrayType,
                         testing::Values(TypeRow{0, "'|u8'", ""}, TypeRow{1, "'|i1'", "int8"},
                                         TypeRow{2, "'|u1'", "uint8"}, TypeRow{3, "'|i2'", "int16"},
                                         TypeRow{4, "'|u2'", "uint16"}, TypeRow{5, "'|i4'", "int32"},
                                         TypeRow{6, "'|u4'", "uint32"}, TypeRow{7, "'|i8'", "int64"},
                                         TypeRow{8, "'|u8'", "uint64"}, TypeRow{9, "'|f4'", "float32"},
                                         TypeRow{10, "'|f8'", "float64"}, TypeRow{11, "'|u2'", "uint16"},
                                         TypeRow{12, "None", ""}, TypeRow{4000000000U, "None", ""}),
                         [](const auto& row) { return "Type" + std::to_string(row.param.type); });

// ---- NumPy ----

/// Skips where the interpreter has no NumPy.
class NumPy : public SharedScriptTest
{
protected:
    void SetUp() override
    {
        if (value("__import__('importlib.util').util.find_spec('numpy') is None") == "True")
            GTEST_SKIP() << "this Python has no NumPy";
        EXPECT_CLEAN_RUN("import numpy");
    }
};

class NumPyType : public NumPy, public testing::WithParamInterface<TypeRow>
{
};

TEST_P(NumPyType, IsTheArraysDtype)
{
    const auto image = makeImage(imageInfo(3, 2, 1, ExImageDataType(GetParam().type)));
    publish("img", *image);
    EXPECT_EQ(value("str(__import__('numpy').asarray(img).dtype)"), std::string("'") + GetParam().dtype + "'");
}

INSTANTIATE_TEST_SUITE_P(Types, NumPyType,
                         testing::Values(TypeRow{1, "'|i1'", "int8"}, TypeRow{2, "'|u1'", "uint8"},
                                         TypeRow{3, "'|i2'", "int16"}, TypeRow{4, "'|u2'", "uint16"},
                                         TypeRow{5, "'|i4'", "int32"}, TypeRow{6, "'|u4'", "uint32"},
                                         TypeRow{7, "'|i8'", "int64"}, TypeRow{8, "'|u8'", "uint64"},
                                         TypeRow{9, "'|f4'", "float32"}, TypeRow{10, "'|f8'", "float64"},
                                         TypeRow{11, "'|u2'", "uint16"}),
                         [](const auto& row) { return "Type" + std::to_string(row.param.type); });

TEST_F(NumPy, AsArraySharesTheImagesMemory)
{
    const auto image = makeTestImage(6, 4, 3, ExImageDataType::UInt8, 8, 32);
    publish("img", *image);
    EXPECT_CLEAN_RUN("import numpy\n"
                     "a = numpy.asarray(img)\n"
                     "print(a.shape, a.strides, a.flags.owndata, a.flags.writeable)\n"
                     "print(a.__array_interface__['data'][0] == img.bp, a.base is img)\n"
                     "print(numpy.shares_memory(a, numpy.asarray(img)))\n");
    EXPECT_EQ(host.printed().toStdString(), "(6, 4, 3) (3, 32, 1) False True\nTrue True\nTrue\n");
}

TEST_F(NumPy, AsArrayIsIndexedByXThenYThenChannelAndLeavesThePaddingOut)
{
    const auto image = makeTestImage(5, 3, 3, ExImageDataType::UInt8, 8, 32);
    std::memset(image->picBuf()->row(0) + 15, 0xEE, 17);
    publish("img", *image);
    // The values ascend along the rows: y * 15 + x * 3 + c.
    EXPECT_CLEAN_RUN(
        "import numpy\n"
        "a = numpy.asarray(img)\n"
        "print(all(a[x, y, c] == y * 15 + x * 3 + c for x in range(5) for y in range(3) for c in range(3)))\n"
        "print(int(a.max()))\n");
    EXPECT_EQ(host.printed().toStdString(), "True\n44\n");
}

TEST_F(NumPy, WritesReachTheImage)
{
    const auto image = makeImage(imageInfo(5, 3, 1, ExImageDataType::UInt16, 32));
    publish("img", *image);
    EXPECT_CLEAN_RUN("import numpy\nnumpy.asarray(img)[4, 2] = 4095\n");
    std::uint16_t seen = 0;
    std::memcpy(&seen, image->picBuf()->row(2) + 4 * 2, sizeof seen);
    EXPECT_EQ(seen, 4095);
    EXPECT_EQ(image->picBuf()->row(2)[10], 0); // the first byte of the padding
}

TEST_F(NumPy, AWholeArrayWrittenLeavesThePaddingAsItWas)
{
    const auto image = makeImage(imageInfo(5, 3, 1, ExImageDataType::UInt8, 8));
    publish("img", *image);
    EXPECT_CLEAN_RUN("import numpy\nnumpy.asarray(img)[:] = 9\n");
    EXPECT_EQ(
        value("bytes(img)"), "b'" + [] {
            std::string row = "\\t\\t\\t\\t\\t\\x00\\x00\\x00"; // 9 is the tabulator
            return row + row + row;
        }() + "'");
}

TEST_F(NumPy, ArrayMakesACopyThatOutlivesTheImage)
{
    EXPECT_CLEAN_RUN("import numpy\n"
                     "img = vantrel.Image()\n"
                     "img.alloc(4, 2, 1, 8)\n"
                     "a = numpy.array(img)\n"
                     "del img\n"
                     "print(a.sum(), a.shape)\n");
    EXPECT_EQ(host.printed().toStdString(), "0 (4, 2)\n");
}

TEST_F(NumPy, ATypeWithoutATypestrIsRefusedWithAnError)
{
    const auto image = makeImage(imageInfo(3, 2, 1, ExImageDataType(12)));
    publish("img", *image);
    const std::string seen = value("__import__('numpy').asarray(img)");
    EXPECT_NE(seen.find("Error:"), std::string::npos) << seen;
}

TEST_F(NumPy, ABufferWithoutPixelsIsRefusedWithAnError)
{
    const std::unique_ptr<QObject> infoOnly(makeTestImage(1920, 1200)->copy(true));
    publish("img", *qobject_cast<CxImageData*>(infoOnly.get()));
    EXPECT_EQ(value("img.__array_interface__['data']"), "(0, 0)");
    EXPECT_EQ(value("__import__('numpy').asarray(img)").substr(0, 11), "ValueError:");
}

TEST_F(NumPy, AnEmptyImageGivesItsError)
{
    // NumPy drops the error of an attribute look-up in some versions, and then wraps the object itself.
    const std::string seen = value("__import__('numpy').asarray(vantrel.Image())");
    EXPECT_TRUE(seen == "Exception: Vantrel image object is empty" || seen.find("dtype=object") != std::string::npos)
        << seen;
}

TEST_F(NumPy, GetImageDataNumpyOfColourComesOutRedFirst)
{
    const auto image = makeTestImage(2, 1, 3);
    publish("img", *image); // B, G, R = 0, 1, 2 and 3, 4, 5
    EXPECT_EQ(value("__import__('numpy').asarray(img.get_image_data_numpy()).tolist()"), "[[[2, 1, 0]], [[5, 4, 3]]]");
    EXPECT_EQ(value("__import__('numpy').asarray(img.get_image_data_numpy(True)).tolist()"),
              "[[[0, 1, 2]], [[3, 4, 5]]]");
}

} // namespace
