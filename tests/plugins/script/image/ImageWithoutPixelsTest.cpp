// Every method of vantrel.Image on what has no pixels: an empty object, and images that a host published without any.

#include "support/LogCapture.h"
#include "support/ScriptTest.h"

#include <QtCore/QTemporaryDir>

#include <array>

namespace {

constexpr const char* noError = "SystemError"; ///< what the interpreter makes of null without an error
constexpr const char* isEmpty = "Exception: Vantrel image object is empty";
constexpr const char* emptyText = "'Vantrel image object is empty'";
constexpr const char* outOfMemory = "Exception: cannot allocate new image, out of memory";
constexpr const char* noSuchBits = "Exception: number of bits out of range";
constexpr const char* noSuchChannel = "Exception: channel number out of range";
constexpr const char* noX = "Exception: x-coordinate out of range";
constexpr const char* noY = "Exception: y-coordinate out of range";
constexpr const char* noX1 = "Exception: x1-coordinate out of range";
constexpr const char* noX2 = "Exception: x2-coordinate out of range";
constexpr const char* noData = "Exception: Cannot measure data";
constexpr const char* noProfile = "Exception: Cannot measure profile data";
constexpr const char* notRgb = "Exception: Image must have RGB or RGBA format";

/// What a host may publish, or a script make, that has no pixels.
enum State {
    Empty,         ///< an object that stands for no image
    WithoutBuffer, ///< an image whose picBuf() is null
    WithoutMemory, ///< an image of 8 x 4 colour pixels whose data is null
    WithoutArea,   ///< an image of 0 x 0 pixels on memory
    StateCount
};

struct Call {
    const char* expression;                     ///< `img` has no pixels, `other` is an ordinary image of 8 x 4 colours
    std::array<const char*, StateCount> result; ///< what value() says of it
    const char* refusal = nullptr; ///< the host's operation that is asked where there is a buffer, and says no
};

const Call calls[] = {
    {"img.get_width()", {noError, noError, "8", "0"}},
    {"img.get_height()", {noError, noError, "4", "0"}},
    {"img.get_channels()", {noError, noError, "3", "3"}},
    {"img.get_bpc()", {noError, noError, "8", "8"}},
    {"img.get_frame_number()", {noError, noError, "7", "7"}},
    {"img.get_time_stamp()", {noError, noError, "9", "9"}},
    {"img.get_bytes_per_pixel()", {noError, noError, "3", "3"}},
    {"img.__bytes__()", {isEmpty, isEmpty, isEmpty, "b''"}},
    {"bytes(img)", {isEmpty, isEmpty, isEmpty, "b''"}},
    {"img.tobytes()", {isEmpty, isEmpty, isEmpty, "b''"}},
    {"img.get_image_data_raw()", {isEmpty, isEmpty, isEmpty, "b''"}},
    {"img.get_image_data_numpy(True) is img", {noError, "True", "True", "True"}},
    {"img.get_image_data_numpy().get_width()", {noError, noError, "8", "Exception: Cannot allocate image"}},
    {"str(img)[:26]",
     {"'Vantrel image object is em'", "'Vantrel image object is em'", "'Vantrel image, width: 8, h'",
      "'Vantrel image, width: 0, h'"}},
    {"img.width", {isEmpty, isEmpty, "8", "0"}},
    {"img.bp == 0", {isEmpty, isEmpty, "True", "False"}},
    {"img.bp_size", {isEmpty, isEmpty, "128", "0"}},
    {"img.gain_db", {isEmpty, isEmpty, isEmpty, isEmpty}},
    {"img.__array_interface__['shape']", {isEmpty, isEmpty, "(8, 4, 3)", "(0, 0, 3)"}},
    {"callable(img.alloc)", {"True", "True", "True", "True"}},

    {"img.get_pixel_value(0, 0)", {noError, noError, noError, noX}},
    {"img.get_pixel_value(8, 0)", {noError, noError, noX, noX}},
    {"img.get_pixel_value(0, 4)", {noError, noError, noY, noX}},
    {"img.get_pixel_value(0, 0, 3)", {noError, noError, noSuchChannel, noX}},
    {"img.set_pixel_value(1, 7, 3, 2)", {noError, noError, noError, noX}},
    {"img.set_pixel_value(1, 7, 4, 2)", {noError, noError, noY, noX}},
    {"img.draw_pixel_line(1, 0, 0, 7, 3)", {noError, noError, noError, noX1}},
    {"img.draw_pixel_line(1, 0, 0, 8, 3)", {noError, noError, noX2, noX1}},
    {"img.draw_pixel_rect(1, 0, 0, 7, 3)", {noError, noError, noError, noX1}},
    {"img.draw_pixel_rect(1, 0, 0, 7, 3, -1)", {noError, noError, noSuchChannel, noX1}},

    {"img.to_rgb().get_channels()", {noError, noError, "4", outOfMemory}},
    {"any(bytes(img.to_rgb()))", {noError, noError, "False", outOfMemory}},
    {"img.extract_channel(2).get_channels()", {noError, noError, "1", outOfMemory}},
    {"img.extract_channel(3)", {noError, noError, noSuchChannel, noSuchChannel}},
    {"img.convert_bpc(12).get_bpc()", {noError, noError, "12", outOfMemory}},
    {"img.convert_bpc(33)", {noError, noError, noSuchBits, noSuchBits}},
    {"str(img.new_copy())[:26]",
     {noError, "'Vantrel image object is em'", "'Vantrel image, width: 8, h'", outOfMemory}},
    {"img.crop(0, 0, 2, 1).get_width()", {noError, noError, "2", "2"}},
    {"img.crop(0, 0, 0, 0)", {noError, noError, outOfMemory, outOfMemory}},
    {"img.resize(2, 1).get_width()", {noError, noError, "2", "2"}},
    {"img.resize(2, 1, 0, 0, 0, 0).get_width()", {noError, noError, "2", "2"}},
    {"img.copy_to(other)", {noError, noError, "None", "None"}, "CopyPicBuf: "},
    {"other.copy_to(img)", {noError, noError, "None", "None"}, "CopyPicBuf: "},
    {"img.copy_to(img)", {noError, noError, "None", "None"}, "CopyPicBuf: "},
    {"img.copy_rect_to(0, 0, 2, 2, other, 0, 0)", {noError, noError, "None", "None"}, "CopyRect: "},
    {"other.copy_rect_to(0, 0, 2, 2, img, 0, 0)", {noError, noError, "None", "None"}, "CopyRect: "},
    {"img.resize_to(other)", {noError, noError, "None", "None"}, "ResizeRect: "},
    {"other.resize_to(img)", {noError, noError, "None", "None"}, "ResizeRect: "},
    {"img.tesize_rect_to(0, 0, 2, 2, other, 0, 0, 3, 3)", {noError, noError, "None", "None"}, "ResizeRect: "},
    {"other.tesize_rect_to(0, 0, 2, 2, img, 0, 0, 3, 3)", {noError, noError, "None", "None"}, "ResizeRect: "},
    {"img.add(other)", {noError, noError, "None", "None"}, "Add: "},
    {"other.add(img)", {noError, noError, "None", "None"}, "Add: "},
    {"img.subtract(other)", {noError, noError, "None", "None"}, "Subtract: "},
    {"other.subtract(img)", {noError, noError, "None", "None"}, "Subtract: "},
    {"img.divide_by_value(2)", {noError, noError, "None", "None"}, "DivideByValue: "},
    {"img.save_to_file('x.png')", {noError, "None", "None", "None"}, "Cannot save image file "},
    {"img.save_to_file('x.unknown')", {noError, noError, noError, noError}},

    {"img.measure_rect()", {noError, noData, noData, noData}},
    {"img.measure_rect(0, 0, 1, 1, True)", {noError, noData, noData, noData}},
    {"img.measure_row_profiles_in_rect()", {noError, noProfile, noProfile, noProfile}},
    {"img.measure_column_profiles_in_rect(0, 0, 1, 1)", {noError, noProfile, noProfile, noProfile}},

    {"vantrel.Graph().draw_into_image(img)", {noError, notRgb, notRgb, "None"}},
};

class ImageWithoutPixels : public SharedScriptTest
{
protected:
    ImageWithoutPixels()
    {
        host.environment.directory = m_folder.path();
        SxPicBufInfo info = imageInfo(8, 4, 3);
        info.frameNumber = 7;
        info.timeStamp = 9;
        m_other = makeImage(info);
        std::fill_n(m_other->picBuf()->data, m_other->picBuf()->dataSize(), std::uint8_t(5));
        m_withoutMemory.setPicBuf(*m_other->picBuf());
        m_withoutMemory.picBuf()->data = nullptr;
        m_withoutArea = makeImage(info);
        m_withoutArea->picBuf()->width = 0;
        m_withoutArea->picBuf()->height = 0;
        publish("other", *m_other);
    }

    void expectResults(State state)
    {
        for (const Call& call : calls) {
            const LogCapture log;
            EXPECT_EQ(value(call.expression), call.result[state]) << call.expression;
            if (!call.refusal || call.result[state] != std::string("None"))
                continue;
            const QString logged = log.records().value(0).text;
            EXPECT_TRUE(log.records().size() == 1 && logged.startsWith(QLatin1String(call.refusal)))
                << call.expression << ": " << logged.toStdString();
        }
        EXPECT_EQ(value("set(bytes(other))"), "{5}") << "nothing was written into the other image";
    }

    QTemporaryDir m_folder;
    std::unique_ptr<CxImageData> m_other;
    CxImageData m_withoutBuffer;
    CxImageData m_withoutMemory;
    std::unique_ptr<CxImageData> m_withoutArea;
};

TEST_F(ImageWithoutPixels, AnEmptyObjectFailsBeforeTheHostIsAsked)
{
    CxImageData* nothing = nullptr;
    host.plugin->addImageVariable(QStringLiteral("img"), nothing);
    expectResults(Empty);
}

TEST_F(ImageWithoutPixels, AnImageWithoutABufferIsAskedWhatNeedsNone)
{
    publish("img", m_withoutBuffer);
    expectResults(WithoutBuffer);
}

TEST_F(ImageWithoutPixels, AnImageWithoutMemoryIsLeftToTheHost)
{
    publish("img", m_withoutMemory);
    expectResults(WithoutMemory);
}

TEST_F(ImageWithoutPixels, AnImageOfNoAreaIsLeftToTheHost)
{
    publish("img", *m_withoutArea);
    expectResults(WithoutArea);
}

TEST_F(ImageWithoutPixels, EveryMethodIsTried)
{
    QStringList missing;
    for (const QString& name :
         QString::fromStdString(value("' '.join(dir(vantrel.Image))")).remove(u'\'').split(u' ')) {
        const bool fills = name == u"alloc" || name.startsWith(u"from_");
        const bool tried = std::any_of(std::begin(calls), std::end(calls), [&](const Call& call) {
            return QLatin1String(call.expression).contains(u'.' + name + u'(');
        });
        if (!tried && !fills && (!name.startsWith(u"__") || name == u"__bytes__"))
            missing.append(name);
    }
    EXPECT_EQ(missing.join(u' ').toStdString(), "");
}

} // namespace
