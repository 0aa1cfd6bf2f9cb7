// Runs tests with an application object, and checks after each that no host image is left over.

#include "CxImageData.h"
#include "support/Leftovers.h"
#include "support/PluginHost.h"
#include "support/TestSettings.h"

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

// LeakSanitizer cannot tell the interpreter's deliberate leftovers from leaks; these tests count live objects
// themselves. Sizes that no memory holds are asked for on purpose, and the answer has to be null as elsewhere.
// The interpreter puts a signal stack of its own on the thread that starts it, which the sanitizer must not take for
// its.
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
    // Tests show nothing to anybody unless asked to.
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
