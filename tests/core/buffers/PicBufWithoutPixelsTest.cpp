// Every operation refuses buffers that have no pixels, on either side, and leaves the other side as it was.

#include "TestPicBuf.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using Buf = SxPicBuf;

struct Operation {
    const char* name;
    std::function<bool(Buf& a, Buf& b)> run;
};

// 8-bit colour on both sides, or one channel in b, so that nothing but the missing pixels can be refused.
const Operation onTwo[] = {
    {"CopyPicBuf", [](Buf& a, Buf& b) { return CxPicBufAPI::CopyPicBuf(a, b, true); }},
    {"ConvertPicToDifBpc", [](Buf& a, Buf& b) { return CxPicBufAPI::ConvertPicToDifBpc(a, b, true); }},
    {"ConvertPicToDifBpc without scale", [](Buf& a, Buf& b) { return CxPicBufAPI::ConvertPicToDifBpc(a, b, false); }},
    {"ConvertPicToRGB", [](Buf& a, Buf& b) { return CxPicBufAPI::ConvertPicToRGB(a, b); }},
    {"CopyRect", [](Buf& a, Buf& b) { return CxPicBufAPI::CopyRect(a, 0, 0, b, 0, 0, 2, 2); }},
    {"ResizeRect", [](Buf& a, Buf& b) { return CxPicBufAPI::ResizeRect(a, 0, 0, 2, 2, b, 0, 0, 3, 3); }},
    {"Resize", [](Buf& a, Buf& b) { return CxPicBufAPI::Resize(a, b); }},
    {"Add", [](Buf& a, Buf& b) { return CxPicBufAPI::Add(a, b); }},
    {"Subtract", [](Buf& a, Buf& b) { return CxPicBufAPI::Subtract(a, b); }},
};

const Operation onOne[] = {
    {"SwapRedAndBlue", [](Buf& a, Buf&) { return CxPicBufAPI::SwapRedAndBlue(a); }},
    {"DivideByValue", [](Buf& a, Buf&) { return CxPicBufAPI::DivideByValue(a, 2); }},
    {"CheckPicValidData", [](Buf& a, Buf&) { return CxPicBufAPI::CheckPicValidData(a); }},
    {"DetectNegativePixelValue", [](Buf& a, Buf&) { return CxPicBufAPI::DetectNegativePixelValue(a); }},
    {"DetectMaxAbsValue", [](Buf& a, Buf&) { return CxPicBufAPI::DetectMaxAbsValue(a) != 0; }},
    {"DetectColorBitDepth",
     [](Buf& a, Buf&) {
         unsigned bpc = 77;
         const bool found = CxPicBufAPI::DetectColorBitDepth(a, bpc, true);
         return found || bpc != 77;
     }},
};

/// The ways of a record to have no pixels.
std::vector<Buf> without(const Buf& whole)
{
    std::vector<Buf> records(6, whole);
    records[0].data = nullptr;
    records[1].width = 0;
    records[2].height = 0;
    records[3].channels = 0;
    records[4].lineStride = 0;
    records[5] = Buf();
    return records;
}

TEST(PicBufWithoutPixels, IsRefusedOnEitherSide)
{
    TestPicBuf first({5, 4, 3});
    TestPicBuf second({5, 4, 3});
    for (const Operation& operation : onTwo) {
        EXPECT_TRUE(operation.run(first.record, second.record)) << operation.name;
        const auto firstBefore = first.pixels();
        const auto secondBefore = second.pixels();
        for (Buf& none : without(first.record)) {
            EXPECT_FALSE(operation.run(none, second.record)) << operation.name;
            EXPECT_FALSE(operation.run(second.record, none)) << operation.name;
            EXPECT_FALSE(operation.run(none, none)) << operation.name;
        }
        EXPECT_EQ(first.pixels(), firstBefore) << operation.name;
        EXPECT_EQ(second.pixels(), secondBefore) << operation.name;
    }
}

TEST(PicBufWithoutPixels, HasNoChannelToExtract)
{
    TestPicBuf colour({5, 4, 3});
    TestPicBuf mono({5, 4, 1});
    EXPECT_TRUE(CxPicBufAPI::ExtractChannel(colour.record, mono.record, 0));
    for (Buf& none : without(colour.record))
        EXPECT_FALSE(CxPicBufAPI::ExtractChannel(none, mono.record, 0));
    for (Buf& none : without(mono.record))
        EXPECT_FALSE(CxPicBufAPI::ExtractChannel(colour.record, none, 0));
}

TEST(PicBufWithoutPixels, IsNotChangedInPlaceAndTellsNothing)
{
    TestPicBuf whole({5, 4, 3});
    for (const Operation& operation : onOne)
        for (Buf& none : without(whole.record))
            EXPECT_FALSE(operation.run(none, none)) << operation.name;
}

} // namespace
