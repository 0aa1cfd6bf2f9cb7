// Runs tests with an application object. Checks after each test that it leaves no host image behind.

#include "CxImageData.h"
#include "Leftovers.h"
#include "PluginHost.h"
#include "TestSettings.h"

#include <QtWidgets/QApplication>

#include <gtest/gtest.h>

#include <utility>

namespace {

int allowedImages = 0;

class LeftoverCheck : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo& /*test*/) override { m_before = CxImageData::liveCount(); }
    void OnTestEnd(const testing::TestInfo& /*test*/) override
    {
        const int allowed = std::exchange(allowedImages, 0);
        if (!testing::Test::IsSkipped()) {
            EXPECT_EQ(CxImageData::liveCount() - m_before, allowed) << "host images left over";
        }
    }

    int m_before = 0;
};

} // namespace

// Leak detection is off: LeakSanitizer cannot tell leaks from what the interpreter keeps on purpose, so the tests count
// live objects instead. Some tests allocate impossible sizes, which must give null, as without a sanitizer. The
// interpreter sets its own signal stack on the thread that starts it; the sanitizer must not mistake it for its own.
extern "C" Q_DECL_EXPORT const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "detect_leaks=0:allocator_may_return_null=1:use_sigaltstack=0";
}

void expectLeftImages(int count)
{
    allowedImages = count;
}

int main(int argc, char** argv)
{
    // Tests show windows only if QT_QPA_PLATFORM says so.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    // As in the viewer: a test that closes its window must not end the event loops of later ones.
    QApplication::setQuitOnLastWindowClosed(false);
    testing::InitGoogleTest(&argc, argv);
    TestSettings::read(application.arguments());
    testing::UnitTest::GetInstance()->listeners().Append(new LeftoverCheck);
    const int result = RUN_ALL_TESTS();
    PluginHost::endShared();
    return result;
}
