// What vantrel.Image asks of the host: which calls come in which order, and with which arguments.

#include "CxPicBufAPI.h"
#include "CxPicBufMeas.h"
#include "image/ImageObject.h"
#include "plugins/support/InsideTest.h"

#include <QtCore/QRect>

#include <dlfcn.h>

#include <climits>
#include <stdexcept>

// Stand before the functions of the host and of the interpreter, for the plugin's objects in this program.

namespace {

QStringList calls;
QString culprit;          ///< the call that throws instead of being passed on
int heldBuffers = 0;      ///< allocated and not yet freed
int imagesBefore = 0;     ///< images that existed before the script
bool objectFails = false; ///< no vantrel.Image can be made

template<typename Function>
Function* real(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// Writes a call down with the number of images that are new since the script began.
void note(const QString& call)
{
    calls.append(QStringLiteral("%1 [%2]").arg(call).arg(CxImageData::liveCount() - imagesBefore));
    if (!culprit.isEmpty() && call.startsWith(culprit))
        throw std::runtime_error(culprit.toStdString());
}

const char* word(bool flag)
{
    return flag ? "true" : "false";
}

} // namespace

bool CxPicBufAPI::AllocPicBufFromHeap(SxPicBuf& buffer, const SxPicBufInfo& info, bool uninitialized,
                                      unsigned long alignment)
{
    note(QStringLiteral("AllocPicBufFromHeap(%1, %2)").arg(QLatin1String(word(uninitialized))).arg(alignment));
    const bool done = real<bool(SxPicBuf&, const SxPicBufInfo&, bool, unsigned long)>(
        "_ZN11CxPicBufAPI19AllocPicBufFromHeapER8SxPicBufRK12SxPicBufInfobm")(buffer, info, uninitialized, alignment);
    heldBuffers += done ? 1 : 0;
    return done;
}

void CxPicBufAPI::FreePicBuf(SxPicBuf& buffer, bool reset)
{
    heldBuffers -= buffer.data ? 1 : 0;
    real<void(SxPicBuf&, bool)>("_ZN11CxPicBufAPI10FreePicBufER8SxPicBufb")(buffer, reset);
}

bool CxPicBufAPI::CopyPicBuf(SxPicBuf& dst, const SxPicBuf& src, bool withInfo)
{
    note(QStringLiteral("CopyPicBuf(%1)").arg(QLatin1String(word(withInfo))));
    return real<bool(SxPicBuf&, const SxPicBuf&, bool)>("_ZN11CxPicBufAPI10CopyPicBufER8SxPicBufRKS0_b")(dst, src,
                                                                                                         withInfo);
}

bool CxPicBufAPI::SwapRedAndBlue(SxPicBuf& buffer)
{
    note(QStringLiteral("SwapRedAndBlue()"));
    return real<bool(SxPicBuf&)>("_ZN11CxPicBufAPI14SwapRedAndBlueER8SxPicBuf")(buffer);
}

void CxImageData::setPicBuf(const SxPicBuf& buffer)
{
    note(QStringLiteral("setPicBuf()"));
    real<void(CxImageData*, const SxPicBuf&)>("_ZN11CxImageData9setPicBufERK8SxPicBuf")(this, buffer);
}

void CxImageData::setImageMetadata(SxImageMetadata* metadata)
{
    note(QStringLiteral("setImageMetadata(%1)").arg(metadata ? metadata->exposureTimeUs : -1));
    real<void(CxImageData*, SxImageMetadata*)>("_ZN11CxImageData16setImageMetadataEP15SxImageMetadata")(this, metadata);
}

namespace {

struct Measurement {
    QString kind;
    const CxImageData* image = nullptr;
    QRect rect;
    int flags = 0;
};

QList<Measurement> measurements;

} // namespace

bool CxPicBufMeas::measureHistogram(CxHistoData& /*result*/, const CxImageData* image, const QRect& rect,
                                    CxHistoData::ExHistoDataFlags flags)
{
    measurements.append({QStringLiteral("whole"), image, rect, int(flags)});
    return true;
}

bool CxPicBufMeas::measureRowsColumnsProfileStats(bool rows, CxProfileData& /*result*/, const CxImageData* image,
                                                  const QRect& rect)
{
    measurements.append({rows ? QStringLiteral("rows") : QStringLiteral("columns"), image, rect, 0});
    return true;
}

extern "C" PyObject* PyObject_CallObject(PyObject* callable, PyObject* arguments)
{
    if (callable == reinterpret_cast<PyObject*>(TxPyImageType)) {
        calls.append(QStringLiteral("new object [%1]").arg(CxImageData::liveCount() - imagesBefore));
        if (objectFails)
            return PyErr_NoMemory();
    }
    return real<PyObject*(PyObject*, PyObject*)>("PyObject_CallObject")(callable, arguments);
}

namespace {

class ImageHostCalls : public InsideTest
{
protected:
    ImageHostCalls() { run(""); }

    void publish(CxImageData& image)
    {
        plugin->addImageVariable(QStringLiteral("img"), &image);
        imagesBefore = CxImageData::liveCount();
        calls.clear();
    }
};

// ---- get_image_data_numpy ----

class ImageDataNumpyCalls : public ImageHostCalls
{
protected:
    ImageDataNumpyCalls()
    {
        SxImageMetadata metadata;
        metadata.exposureTimeUs = 1234;
        image->setImageMetadata(&metadata);
        publish(*image);
    }
    ~ImageDataNumpyCalls() override
    {
        culprit.clear();
        objectFails = false;
    }

    std::unique_ptr<CxImageData> image = makeTestImage(2, 1, 3);
    const QStringList order = {QStringLiteral("AllocPicBufFromHeap(false, 0) [0]"),
                               QStringLiteral("CopyPicBuf(true) [0]"),
                               QStringLiteral("SwapRedAndBlue() [0]"),
                               QStringLiteral("setPicBuf() [1]"),
                               QStringLiteral("setImageMetadata(1234) [1]"),
                               QStringLiteral("new object [1]")};
};

TEST_F(ImageDataNumpyCalls, FillTheBufferThenMakeTheImageThenTheObject)
{
    EXPECT_EQ(run("copy = img.get_image_data_numpy()\nprint(bytes(copy)[:6])").toStdString(), "");
    EXPECT_EQ(output.toStdString(), "b'\\x02\\x01\\x00\\x05\\x04\\x03'\n");
    EXPECT_EQ(calls.join(u'\n').toStdString(), order.join(u'\n').toStdString());
}

TEST_F(ImageDataNumpyCalls, LoseNothingWhenOneOfThemThrows)
{
    for (qsizetype step = 0; step < order.size() - 1; ++step) {
        const int held = heldBuffers;
        culprit = order[step].section(u'(', 0, 0);
        calls.clear();
        EXPECT_EQ(run("img.get_image_data_numpy()").toStdString(), "Python rasied exception") << culprit.toStdString();
        EXPECT_EQ(calls.join(u'\n').toStdString(), order.first(step + 1).join(u'\n').toStdString());
        EXPECT_EQ(heldBuffers, held) << culprit.toStdString();
        EXPECT_EQ(CxImageData::liveCount(), imagesBefore) << culprit.toStdString();
    }
}

TEST_F(ImageDataNumpyCalls, LoseNothingWhenTheObjectCannotBeMade)
{
    const int held = heldBuffers;
    objectFails = true;
    EXPECT_TRUE(run("img.get_image_data_numpy()").contains(QStringLiteral("MemoryError")));
    EXPECT_EQ(calls.join(u'\n').toStdString(), order.join(u'\n').toStdString());
    EXPECT_EQ(heldBuffers, held);
    EXPECT_EQ(CxImageData::liveCount(), imagesBefore);
}

// ---- measurements ----

struct RectRow {
    const char* arguments;
    int left, top, right, bottom;
};

class ImageMeasureCalls : public ImageHostCalls
{
protected:
    ~ImageMeasureCalls() override { measurements.clear(); }

    void expectRect(const RectRow& row, const CxImageData& image)
    {
        measurements.clear();
        const std::string arguments = std::string("(") + row.arguments + ")\n";
        EXPECT_EQ(run(("img.measure_rect" + arguments + "img.measure_row_profiles_in_rect" + arguments +
                       "img.measure_column_profiles_in_rect" + arguments)
                          .c_str())
                      .toStdString(),
                  "");
        ASSERT_EQ(measurements.size(), 3) << row.arguments;
        const QStringList kinds = {QStringLiteral("whole"), QStringLiteral("rows"), QStringLiteral("columns")};
        for (qsizetype i = 0; i < measurements.size(); ++i) {
            const Measurement& seen = measurements[i];
            EXPECT_EQ(seen.kind, kinds[i]);
            EXPECT_EQ(seen.image, &image);
            EXPECT_EQ(seen.rect.left(), row.left) << row.arguments;
            EXPECT_EQ(seen.rect.top(), row.top) << row.arguments;
            EXPECT_EQ(seen.rect.right(), row.right) << row.arguments;
            EXPECT_EQ(seen.rect.bottom(), row.bottom) << row.arguments;
        }
    }
};

TEST_F(ImageMeasureCalls, GiveTheRectangleOfTheArguments)
{
    const auto image = makeTestImage(640, 480);
    publish(*image);
    const RectRow rows[] = {
        {"", 0, 0, 639, 479},
        {"600, 0", 600, 0, 639, 479},
        {"1, 2, 3, 4", 1, 2, 3, 5},
        {"5, 6, -7, -2147483648", 5, 6, 639, 479},
        {"-5, -6, 7, 8", -5, -6, 1, 1},
        {"700, 500", 700, 500, 639, 479},
        {"2000000000, -2000000000, 7, 8", 2000000000, -2000000000, 2000000006, -1999999993},
        {"2000000000, 2000000000", 2000000000, 2000000000, 639, 479},
        {"-2147483648, -2147483648", INT_MIN, INT_MIN, 639, 479},
        {"-2147483648, -2147483648, 1, 2147483647", INT_MIN, INT_MIN, INT_MIN, -2},
        {"2147483647, 2147483646, 1, 2", INT_MAX, INT_MAX - 1, INT_MAX, INT_MAX},
        {"1, 0, 2147483647, 2147483647", 1, 0, INT_MAX, INT_MAX - 1},
        // Beyond the end of the range the corner stays there.
        {"2147483647, 2, 2, 2147483647", INT_MAX, 2, INT_MAX, INT_MAX},
        {"2147483647, 2147483647, 2147483647, 2147483647", INT_MAX, INT_MAX, INT_MAX, INT_MAX},
    };
    for (const RectRow& row : rows)
        expectRect(row, *image);
}

TEST_F(ImageMeasureCalls, GiveTheEdgesOfAnImageThatNoIntegerHolds)
{
    const auto image = makeTestImage(4, 2);
    publish(*image);
    image->picBuf()->width = 0xFFFFFFFFU;
    image->picBuf()->height = 0x80000000U;
    expectRect({"", 0, 0, INT_MAX, INT_MAX}, *image);
    expectRect({"2147483647, -2147483648", INT_MAX, INT_MIN, INT_MAX, INT_MAX}, *image);
}

TEST_F(ImageMeasureCalls, AskAboutAnImageWithoutABufferToo)
{
    CxImageData image;
    publish(image);
    expectRect({"1, 2, 3, 4", 1, 2, 3, 5}, image);
    expectRect({"3, 4", 3, 4, -1, -1}, image);
}

TEST_F(ImageMeasureCalls, AskForStatisticsAndAboveTheBlackLevelWhenTold)
{
    const auto image = makeTestImage(4, 2);
    publish(*image);
    run("img.measure_rect()\nimg.measure_rect(0, 0, 0, 0, False)\nimg.measure_rect(0, 0, 0, 0, True)");
    ASSERT_EQ(measurements.size(), 3);
    EXPECT_EQ(measurements[0].flags, 2);
    EXPECT_EQ(measurements[1].flags, 2);
    EXPECT_EQ(measurements[2].flags, 10);
}

} // namespace
