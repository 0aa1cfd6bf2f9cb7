// Who frees the pixels that the plugin allocates, and when, whatever the host's classes do with them.

#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "plugins/support/InsideTest.h"

#include <gmock/gmock.h>

#include <dlfcn.h>

#include <functional>
#include <map>
#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

using testing::ElementsAre;

namespace {

enum class Attaching { Normal, LeavesTheRecord, Throws };
enum class Setting { Normal, Throws };

Attaching attaching = Attaching::Normal;
Setting setting = Setting::Normal;
bool constructorThrows = false;

std::set<const void*> livingPixels;
int freedTwice = 0;
std::vector<std::string> events; ///< calls with the letters of their pixels, a being allocated first
std::map<const void*, char> letters;
char nextLetter = 'a';

struct Detection {
    bool atTheRecord; ///< the result goes into the record itself
    bool wholeImage;
    unsigned width, height;
    ExImageDataType type;
};
QList<Detection> detections;

void note(const char* what, const void* pixels)
{
    events.push_back(std::string(what) + ' ' + letters[pixels]);
}

template<typename Function>
Function original(const char* symbol)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, symbol));
}

} // namespace

// These stand before the host's own functions, for the plugin's objects and the core library in this program.

bool CxPicBufAPI::AllocPicBufFromHeap(SxPicBuf& buffer, const SxPicBufInfo& info, bool uninitialized,
                                      unsigned long alignment)
{
    static const auto allocate = original<bool (*)(SxPicBuf&, const SxPicBufInfo&, bool, unsigned long)>(
        "_ZN11CxPicBufAPI19AllocPicBufFromHeapER8SxPicBufRK12SxPicBufInfobm");
    const bool allocated = allocate(buffer, info, uninitialized, alignment);
    if (buffer.data) {
        livingPixels.insert(buffer.data);
        letters[buffer.data] = nextLetter++;
        note("allocate", buffer.data);
    }
    return allocated;
}

void CxPicBufAPI::FreePicBuf(SxPicBuf& buffer, bool reset)
{
    static const auto release = original<void (*)(SxPicBuf&, bool)>("_ZN11CxPicBufAPI10FreePicBufER8SxPicBufb");
    if (buffer.data) {
        note("free", buffer.data);
        if (livingPixels.erase(buffer.data) == 0) {
            ++freedTwice;
            buffer.data = nullptr;
        }
    }
    release(buffer, reset);
}

bool CxPicBufAPI::DetectColorBitDepth(const SxPicBuf& buffer, unsigned& bpc, bool wholeImage)
{
    static const auto detect =
        original<bool (*)(const SxPicBuf&, unsigned&, bool)>("_ZN11CxPicBufAPI19DetectColorBitDepthERK8SxPicBufRjb");
    detections.append({&bpc == &buffer.bpc, wholeImage, buffer.width, buffer.height, buffer.dataType});
    return detect(buffer, bpc, wholeImage);
}

void CxImageData::setPicBuf(const SxPicBuf& buffer)
{
    static const auto set = original<void (*)(CxImageData*, const SxPicBuf&)>("_ZN11CxImageData9setPicBufERK8SxPicBuf");
    set(this, buffer);
    if (setting == Setting::Throws)
        throw std::runtime_error("setPicBuf");
}

void CxImageData::attachPicBuf(SxPicBuf* buffer)
{
    note("attach", buffer->data);
    setPicBuf(*buffer);
    if (attaching == Attaching::Throws)
        throw std::runtime_error("attachPicBuf");
    if (attaching == Attaching::Normal)
        buffer->data = nullptr;
}

// The constructor by the name that it has for the linker: written as one it would make the members a second time.
Q_DECL_EXPORT void constructImage(void* memory) asm("_ZN11CxImageDataC1Ev");
void constructImage(void* memory)
{
    static const auto construct = original<void (*)(void*)>("_ZN11CxImageDataC1Ev");
    if (constructorThrows)
        throw std::bad_alloc();
    construct(memory);
}

namespace {

constexpr const char* raised = "Python rasied exception";

class PixelOwnership : public InsideTest
{
protected:
    PixelOwnership()
    {
        forget();
        // An array of numbers with the interface of NumPy's.
        EXPECT_EQ(run("import sys\n"
                      "class Array:\n"
                      "    def __init__(self, code, values, shape):\n"
                      "        import array\n"
                      "        codes = {'u1': 'B', 'u2': 'H', 'u4': 'I', 'u8': 'Q', 'i1': 'b', 'i2': 'h', 'i4': 'i',\n"
                      "                 'i8': 'q', 'f4': 'f', 'f8': 'd'}\n"
                      "        self.values = array.array(codes[code], values)\n"
                      "        self.__array_interface__ = {'shape': shape, 'typestr': '<' + code,\n"
                      "                                    'data': (self.values.buffer_info()[0], False)}\n"
                      "sys.Array = Array\n")
                      .toStdString(),
                  "");
    }
    ~PixelOwnership() override { forget(); }

    static void forget()
    {
        attaching = Attaching::Normal;
        setting = Setting::Normal;
        constructorThrows = false;
        livingPixels.clear();
        freedTwice = 0;
        events.clear();
        letters.clear();
        nextLetter = 'a';
        detections.clear();
    }

    /// The result of a script that makes this call on an image of 5 x 3; `then` is done right before the call.
    std::string resultOf(const char* call, const std::function<void()>& then)
    {
        environment.onWait = [then](double) {
            events.clear();
            then();
        };
        const QString result = run(QStringLiteral("import sys\n"
                                                  "img = vantrel.Image()\n"
                                                  "img.alloc(5, 3, 1, 8)\n"
                                                  "sys.kept = img\n"
                                                  "vantrel.wait(0)\n"
                                                  "made = img.%1\n")
                                       .arg(QLatin1String(call))
                                       .toUtf8()
                                       .constData());
        attaching = Attaching::Normal;
        setting = Setting::Normal;
        constructorThrows = false;
        return result.toStdString();
    }

    /// The size of the image that the call was to fill; then the image goes, with the names that a run keeps which the
    /// host has ended.
    std::string whatIsKept()
    {
        EXPECT_EQ(run("import sys\nprint(sys.kept.width, sys.kept.height, end='')\n"
                      "del sys.kept\n"
                      "globals().pop('img', None)\n")
                      .toStdString(),
                  "");
        return output.toStdString();
    }

    void expectNothingLostOrFreedTwice()
    {
        EXPECT_EQ(freedTwice, 0);
        EXPECT_EQ(livingPixels.size(), 0U);
    }
};

const char* const narrowed = "from_array([[200, 1], [2, 3]])";
const char* const notNarrowed = "from_array([[300, 1], [2, 3]])";
const char* const fromInterface = "from_array(sys.Array('u4', [1, 2, 3, 300, 5, 6], (3, 2)))";
const char* const allocated = "alloc(2, 2, 1, 8)";
const char* const cropped = "crop(0, 0, 2, 2)";

TEST_F(PixelOwnership, AttachedPixelsAreTheImagesAlsoWhereItLeavesTheRecordAsItIs)
{
    for (const char* call : {narrowed, notNarrowed, fromInterface}) {
        SCOPED_TRACE(call);
        EXPECT_EQ(resultOf(call, [] { attaching = Attaching::LeavesTheRecord; }), "");
        EXPECT_NE(whatIsKept(), "5 3");
        expectNothingLostOrFreedTwice();
        forget();
    }
}

TEST_F(PixelOwnership, AttachedPixelsAreTheImagesAlsoWhenAttachingThrows)
{
    for (const char* call : {narrowed, notNarrowed, fromInterface}) {
        SCOPED_TRACE(call);
        EXPECT_EQ(resultOf(call, [] { attaching = Attaching::Throws; }), raised);
        EXPECT_EQ(whatIsKept(), "5 3");
        expectNothingLostOrFreedTwice();
        forget();
    }
}

TEST_F(PixelOwnership, PixelsThatWereSetAreTheImagesAlsoWhenSettingThrows)
{
    for (const char* call : {allocated, cropped}) {
        SCOPED_TRACE(call);
        EXPECT_EQ(resultOf(call, [] { setting = Setting::Throws; }), raised);
        EXPECT_EQ(whatIsKept(), "5 3");
        expectNothingLostOrFreedTwice();
        forget();
    }
}

TEST_F(PixelOwnership, PixelsAreFreedWhenTheirImageCannotBeMade)
{
    for (const char* call : {narrowed, notNarrowed, fromInterface, allocated, cropped}) {
        SCOPED_TRACE(call);
        EXPECT_EQ(resultOf(call, [] { constructorThrows = true; }), raised);
        EXPECT_EQ(whatIsKept(), "5 3");
        expectNothingLostOrFreedTwice();
        forget();
    }
}

TEST_F(PixelOwnership, FilledPixelsThatWereConvertedGoBeforeTheOldImage)
{
    EXPECT_EQ(resultOf(narrowed, [] {}), ""); // a is the old image
    EXPECT_THAT(events, ElementsAre("allocate b", "allocate c", "attach c", "free b", "free a"));
    EXPECT_EQ(whatIsKept(), "2 2");
    expectNothingLostOrFreedTwice();
}

TEST_F(PixelOwnership, FilledPixelsOfTheRightTypeAreAttachedThemselves)
{
    EXPECT_EQ(resultOf(notNarrowed, [] {}), "");
    EXPECT_THAT(events, ElementsAre("allocate b", "attach b", "free a"));
    EXPECT_EQ(whatIsKept(), "2 2");
    expectNothingLostOrFreedTwice();
}

// ---- the bits in use ----

TEST_F(PixelOwnership, TheBitsInUseAreAskedForOnceForTheWholeImageIntoItsRecord)
{
    struct Row {
        const char* call;
        int calls;
        ExImageDataType type;
    };
    using Type = ExImageDataType;
    const Row rows[] = {
        {"from_array(sys.Array('u1', [1] * 12, (4, 3)))", 0, Type::UInt8},
        {"from_array(sys.Array('u2', [1] * 12, (4, 3)))", 1, Type::UInt16},
        {"from_array(sys.Array('u4', [1] * 12, (4, 3)))", 1, Type::UInt32},
        {"from_array(sys.Array('u8', [1] * 12, (4, 3)))", 1, Type::UInt64},
        {"from_array(sys.Array('i1', [-1] * 12, (4, 3)))", 0, Type::Int8},
        {"from_array(sys.Array('i2', [-1] * 12, (4, 3)))", 1, Type::Int16},
        {"from_array(sys.Array('i4', [-1] * 12, (4, 3)))", 1, Type::Int32},
        {"from_array(sys.Array('i8', [-1] * 12, (4, 3)))", 1, Type::Int64},
        {"from_array(sys.Array('i2', [1] * 12, (4, 3)))", 0, Type::Int16},
        {"from_array(sys.Array('f4', [1] * 12, (4, 3)))", 0, Type::Float},
        {"from_array(sys.Array('f8', [1] * 12, (4, 3)))", 0, Type::Double},
        {"from_array([[1] * 3] * 4)", 1, Type::UInt16},
        {"from_array([[1.0] * 3] * 4)", 0, Type::Float},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.call);
        EXPECT_EQ(resultOf(row.call, [] { detections.clear(); }), "");
        EXPECT_EQ(whatIsKept(), "3 4");
        ASSERT_EQ(detections.size(), row.calls);
        if (row.calls == 0)
            continue;
        EXPECT_TRUE(detections[0].atTheRecord);
        EXPECT_TRUE(detections[0].wholeImage);
        EXPECT_EQ(detections[0].width, 3U);
        EXPECT_EQ(detections[0].height, 4U);
        EXPECT_EQ(unsigned(detections[0].type), unsigned(row.type));
    }
}

TEST_F(PixelOwnership, TheBitsInUseOfALargeImageAreAskedForOnceToo)
{
    EXPECT_EQ(resultOf("from_array(sys.Array('u2', [1] * 300000, (500, 600)))", [] { detections.clear(); }), "");
    EXPECT_EQ(whatIsKept(), "600 500");
    ASSERT_EQ(detections.size(), 1);
    EXPECT_EQ(detections[0].height, 500U);
}

} // namespace
