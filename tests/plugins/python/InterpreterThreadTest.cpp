// Calls of the host between runs and on any thread. What only works from 3.12 on is skipped before.

#include "CxImageData.h"
#include "support/OtherThread.h"
#include "support/PluginHost.h"
#include "support/TestSettings.h"

#include <QtCore/QFile>
#include <QtCore/QLibrary>
#include <QtCore/QTemporaryDir>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

namespace {

#define NEEDS_A_THREAD_STATE_PER_THREAD()                                                                              \
    if (!TestSettings::isPythonAtLeast3(12))                                                                           \
    GTEST_SKIP() << "before 3.12 the interpreter has one thread state for all threads of the host"

class HostThreads : public PluginTest
{
protected:
    template<typename Function>
    Function* exported(const char* name)
    {
        const auto function = reinterpret_cast<Function*>(QLibrary(TestSettings::pluginFile).resolve(name));
        EXPECT_TRUE(function) << name;
        return function;
    }
};

TEST_F(HostThreads, PublishImagesBetweenRuns)
{
    const auto first = makeTestImage(3, 2);
    const auto second = makeTestImage(4, 2);
    EXPECT_CLEAN_RUN("pass");
    onOtherThread([&] { host.plugin->addImageVariable(QStringLiteral("first"), first.get()); });
    host.plugin->addImageVariable(QStringLiteral("second"), second.get());
    onOtherThread([&] { EXPECT_CLEAN_RUN("print(first.width, second.width)\ndel first, second"); });
    EXPECT_EQ(host.printed().toStdString(), "3 4\n");
}

TEST_F(HostThreads, CallExportedFunctionsBetweenRuns)
{
    const auto runText = exported<void(const char*)>("fx_pyapp_RunPythonString");
    const auto newObject = exported<void*(CxImageData*, int)>("fx_pyimg_createNewImageObject");
    const auto imageOf = exported<CxImageData*(void*)>("fx_pyimg_getImageObjectData");
    const auto image = makeTestImage(3, 2);
    EXPECT_CLEAN_RUN("import builtins\nbuiltins.total = 0");
    for (int i = 0; i < 3; ++i) {
        onOtherThread([&] { runText("import builtins\nbuiltins.total += 1"); });
        runText("import builtins\nbuiltins.total += 1");
    }
    void* object = nullptr; // borrows the image, and ends with the interpreter
    onOtherThread([&] { object = newObject(image.get(), 0); });
    EXPECT_EQ(imageOf(object), image.get());
    EXPECT_CLEAN_RUN("import builtins\nprint(builtins.total)");
    EXPECT_EQ(host.printed().toStdString(), "6\n");
}

// As OpenCV, NumPy and others do.
TEST_F(HostThreads, RunCompiledModulesThatAskForTheLockThemselves)
{
    NEEDS_A_THREAD_STATE_PER_THREAD();
    const char* script = "import ctypes\n"
                         "state = ctypes.pythonapi.PyGILState_Ensure()\n"
                         "ctypes.pythonapi.PyGILState_Release(state)\n"
                         "print('asked', ctypes.pythonapi.PyGILState_Check())\n";
    EXPECT_CLEAN_RUN(script);
    EXPECT_EQ(host.printed().toStdString(), "asked 1\n");
    for (int i = 0; i < 3; ++i) {
        onOtherThread([&] { EXPECT_CLEAN_RUN(script); });
        EXPECT_EQ(host.printed().toStdString(), "asked 1\n");
    }
    EXPECT_CLEAN_RUN(script);
    EXPECT_EQ(host.printed().toStdString(), "asked 1\n");
}

TEST_F(HostThreads, LeaveTheTimeBetweenRunsToThreadsOfTheScript)
{
    NEEDS_A_THREAD_STATE_PER_THREAD();
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("done"));
    EXPECT_CLEAN_RUN(QStringLiteral("import builtins, threading\n"
                                    "builtins.go = threading.Event()\n"
                                    "def work(go=builtins.go, open=open):\n"
                                    "    go.wait()\n"
                                    "    total = sum(range(100000))\n"
                                    "    open('%1', 'w').close()\n"
                                    "threading.Thread(target=work).start()\n")
                         .arg(file));
    EXPECT_FALSE(QFile::exists(file));
    EXPECT_CLEAN_RUN("import builtins\nbuiltins.go.set()");
    for (int i = 0; i < 1000 && !QFile::exists(file); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(QFile::exists(file));
}

TEST_F(HostThreads, WaitForTheLockDuringARunOnAnotherThread)
{
    NEEDS_A_THREAD_STATE_PER_THREAD();
    const auto image = makeTestImage(5, 2);
    std::atomic<bool> started = false;
    std::thread other;
    EXPECT_CLEAN_RUN("import builtins\nbuiltins.total = 0");
    host.environment.onWait = [&](double) { started = true; };
    other = std::thread([&] {
        while (!started)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        host.plugin->addImageVariable(QStringLiteral("shot"), image.get());
    });
    EXPECT_CLEAN_RUN("vantrel.wait(0)\n"
                     "for i in range(100000000):\n"
                     "    if 'shot' in globals(): break\n"
                     "print(shot.width)\n"
                     "del shot\n");
    other.join();
    EXPECT_EQ(host.printed().toStdString(), "5\n");
    EXPECT_CLEAN_RUN("print(1)");
}

// A state that stays bound to the starting thread would be freed with it.
TEST_F(HostThreads, MayEndBeforeTheInterpreter)
{
    for (int i = 0; i < 3; ++i) {
        onOtherThread([&] { EXPECT_CLEAN_RUN("import threading\nprint([1])"); });
        EXPECT_EQ(host.printed().toStdString(), "[1]\n");
    }
    onOtherThread([&] { delete host.loader.instance(); });
    host.restart();
    onOtherThread([&] { EXPECT_CLEAN_RUN("print(2)"); });
    EXPECT_EQ(host.printed().toStdString(), "2\n");
}

} // namespace
