// Runs tests with an application object. Checks after each test that it leaves no host image behind.

#include "CxImageData.h"
#include "Leftovers.h"
#include "PluginHost.h"
#include "TestSettings.h"

#include <QtWidgets/QApplication>

#include <gtest/gtest.h>

#include <utility>

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

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

#ifdef __SANITIZE_THREAD__
/// The thread that handles an event comes after the thread that made it. Qt is built without the thread sanitizer,
/// which therefore does not see the lock on the queue of events and must be told.
class TestApplication : public QApplication
{
public:
    using QApplication::QApplication;
    bool notify(QObject* receiver, QEvent* event) override
    {
        __tsan_acquire(event);
        return QApplication::notify(receiver, event);
    }
};
#else
using TestApplication = QApplication;
#endif

} // namespace

#ifdef __SANITIZE_THREAD__
// The other half of the above: an event is allocated when its content is ready.
extern "C" Q_DECL_EXPORT void __sanitizer_malloc_hook(const volatile void* memory, std::size_t size);
extern "C" void __sanitizer_malloc_hook(const volatile void* memory, std::size_t /*size*/)
{
    __tsan_release(const_cast<void*>(memory));
}

// libQt6Core: texts are shared between threads by atomic reference counts. Half of the counting happens inside the
// library, where the sanitizer does not see it, so it takes the library's release of the last reference for a race.
// invokeMethodImpl: the object that carries a queued function is shared by such a count as well. The thread that queues
// the function may be the last to let the object go. libglib: a thread's event loop makes the descriptor that wakes it,
// and hands it over by atomic operations of the library.
extern "C" Q_DECL_EXPORT const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions()
{
    return "called_from_lib:libQt6Core.so\n"
           "race:QMetaObject::invokeMethodImpl\n"
           "called_from_lib:libglib-2.0.so\n";
}
#endif

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
    TestApplication application(argc, argv);
    // As in the viewer: a test that closes its window must not end the event loops of later ones.
    QApplication::setQuitOnLastWindowClosed(false);
    testing::InitGoogleTest(&argc, argv);
    TestSettings::read(application.arguments());
    testing::UnitTest::GetInstance()->listeners().Append(new LeftoverCheck);
    const int result = RUN_ALL_TESTS();
    PluginHost::endShared();
    return result;
}
