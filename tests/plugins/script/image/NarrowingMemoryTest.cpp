// Narrowing where there is no memory for the result.

#include "image/Narrowing.h"

#include "PicBufHolder.h"

#include <QtCore/qglobal.h>

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstdlib>

static bool memoryIsShort = false;

// Stands before the C library's own, from which pixels come.
extern "C" Q_DECL_EXPORT void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
    using Allocate = void* (*)(std::size_t, std::size_t);
    static const auto original = reinterpret_cast<Allocate>(dlsym(RTLD_NEXT, "aligned_alloc"));
    return memoryIsShort ? nullptr : original(alignment, size);
}

namespace {

TEST(Narrowing, WithoutMemoryForTheResultLeavesThePixelsInTheirType)
{
    PicBufHolder in(3, 2, 1, ExImageDataType::Int32);
    for (unsigned y = 0; y < 2; ++y)
        for (unsigned x = 0; x < 3; ++x)
            reinterpret_cast<std::int32_t*>(in.buffer.row(y))[x] = std::int32_t(y * 3 + x);
    const auto before = in.bytes();
    SxPicBuf out;

    memoryIsShort = true;
    EXPECT_FALSE(fx_img_convertToBestBpc(out, in.buffer));
    memoryIsShort = false;
    EXPECT_EQ(out.data, nullptr);
    EXPECT_EQ(in.buffer.dataType, ExImageDataType::Int32);
    EXPECT_EQ(in.bytes(), before);

    EXPECT_TRUE(fx_img_convertToBestBpc(out, in.buffer));
    CxPicBufAPI::FreePicBuf(out, true);
}

} // namespace
