// The order of virtual operations is part of what plugin and host agree on: a library built against yesterday's headers
// calls by position.

#include "CxChainable.h"
#include "CxImageData.h"
#include "CxImageFileLoader.h"
#include "CxImageFileSaver.h"
#include "CxMdiView.h"
#include "CxScriptLangInterface.h"
#include "IxAppDelegate.h"
#include "IxScriptEnvironment.h"

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>
#include <vector>

namespace {

/// Position of a virtual operation in its class's table, as the common C++ binary interface stores it in a pointer to
/// member.
template<typename Member>
std::ptrdiff_t slotOf(Member member)
{
    static_assert(std::is_member_function_pointer_v<Member> && sizeof(Member) == 2 * sizeof(std::ptrdiff_t));
    std::ptrdiff_t words[2];
    std::memcpy(words, &member, sizeof(words));
#if defined(__arm__) || defined(__aarch64__)
    EXPECT_EQ(words[1] & 1, 1) << "not virtual";
    return words[0] / std::ptrdiff_t(sizeof(void*));
#else
    EXPECT_EQ(words[0] & 1, 1) << "not virtual";
    return (words[0] - 1) / std::ptrdiff_t(sizeof(void*));
#endif
}

using Slots = std::vector<std::ptrdiff_t>;

/// Ascending numbers from the first slot on.
Slots consecutive(std::ptrdiff_t first, std::size_t count)
{
    Slots slots(count);
    for (std::size_t i = 0; i < count; ++i)
        slots[i] = first + std::ptrdiff_t(i);
    return slots;
}

constexpr std::ptrdiff_t afterDestructor = 2; // a virtual destructor takes two slots

TEST(SlotOrder, OfTheLanguageInterface)
{
    using I = CxScriptLangInterface;
    const Slots slots{slotOf(&I::init), slotOf(&I::languageVersion), slotOf(&I::runScript),
                      slotOf(&I::addImageVariable)};
    EXPECT_EQ(slots, consecutive(afterDestructor, 4));
}

TEST(SlotOrder, OfTheScriptEnvironment)
{
    using I = IxScriptEnvironment;
    const Slots slots{slotOf(&I::apiParamDefs),     slotOf(&I::apiParamEnumVals), slotOf(&I::isCameraParameter),
                      slotOf(&I::workingDirectory), slotOf(&I::resolveFilePath),  slotOf(&I::isMainThread),
                      slotOf(&I::addMenuItem),      slotOf(&I::waitForNextFrame), slotOf(&I::wait),
                      slotOf(&I::functionHelp),     slotOf(&I::methodHelp)};
    EXPECT_EQ(slots, consecutive(0, 11));
}

TEST(SlotOrder, OfTheApplicationDelegate)
{
    using I = IxAppDelegate;
    const Slots slots{slotOf(&I::mainWindow),
                      slotOf(&I::menu),
                      slotOf(&I::showNotification),
                      slotOf(&I::activeViewId),
                      slotOf(&I::activateView),
                      slotOf(&I::tileViews),
                      slotOf(&I::setFullScreen),
                      slotOf(&I::view),
                      slotOf(&I::duplicateView),
                      slotOf(&I::setCameraAcquisition),
                      slotOf(&I::restartCameraWithDefaults),
                      slotOf(&I::askUserCaptureImage),
                      slotOf(&I::openFile),
                      slotOf(&I::newViewWithImage),
                      slotOf(&I::setViewImage),
                      slotOf(&I::viewImage),
                      slotOf(&I::playSound)};
    EXPECT_EQ(slots, consecutive(0, 17));
}

TEST(SlotOrder, OfAView)
{
    using I = CxMdiView;
    const Slots slots{slotOf(&I::startVideoRecording), slotOf(&I::stopVideoRecording), slotOf(&I::chainObject)};
    EXPECT_EQ(slots, consecutive(0, 3));
}

TEST(SlotOrder, OfAnImage)
{
    using I = CxImageData;
    const std::ptrdiff_t first = slotOf(&I::clone);
    const Slots slots{slotOf(&I::clone),        slotOf(&I::copy),          slotOf(&I::picBuf),
                      slotOf(&I::attachPicBuf), slotOf(&I::imageMetadata), slotOf(&I::setImageMetadata)};
    EXPECT_EQ(slots, consecutive(first, 6));
    EXPECT_GT(first, slotOf(static_cast<bool (QObject::*)(QEvent*)>(&QObject::event)));
}

TEST(SlotOrder, OfAChainStage)
{
    EXPECT_EQ(slotOf(&CxChainable::process), slotOf(&CxChainable::readConfig) + 1);
}

TEST(SlotOrder, OfLoadersAndSavers)
{
    EXPECT_EQ(slotOf(&CxImageFileLoader::readFile), afterDestructor);
    EXPECT_EQ(slotOf(&CxImageFileLoader::frameAt), afterDestructor + 1);
    EXPECT_EQ(slotOf(&CxImageFileSaver::saveImage), afterDestructor);
}

} // namespace
