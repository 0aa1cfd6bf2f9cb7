// A host that goes to one stage of its life with the plugin and leaves the process there.
//
// usage: plugin_leave_at_stage STAGE PLUGIN PYTHON-HOME [SCRIPT]

#include "CxScriptLangInterface.h"
#include "support/FakeHost.h"

#include <QtCore/QEventLoop>
#include <QtCore/QPluginLoader>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <thread>
#include <unistd.h>

// As for the test programs: see support/Main.cpp.
extern "C" Q_DECL_EXPORT const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "detect_leaks=0:use_sigaltstack=0";
}

namespace {

QString pluginFile;
QString pythonHome;
QString givenScript;

[[noreturn]] void leave()
{
    std::exit(0);
}

void writeOut(const QString& text, bool)
{
    std::fputs(text.toUtf8().constData(), stdout);
}

/// The plugin as a host holds it.
struct Host {
    QPluginLoader loader{pluginFile};
    FakeEnvironment environment;
    FakeDelegate delegate;

    CxScriptLangInterface* plugin()
    {
        auto* object = qobject_cast<CxScriptLangInterface*>(loader.instance());
        if (!object)
            qFatal("%s", qPrintable(loader.errorString()));
        return object;
    }
    CxScriptLangInterface* initialised()
    {
        plugin()->init();
        return plugin();
    }
    void run(const QString& script, void (*output)(const QString&, bool) = writeOut,
             void (*started)(void*, void*) = nullptr)
    {
        const QString result = plugin()->runScript(script, &environment, pythonHome, started, nullptr, output);
        std::fputs(result.toUtf8().constData(), stderr);
    }
};

const QString work = QStringLiteral("import json, threading\n"
                                    "img = vantrel.Image()\n"
                                    "img.alloc(8, 8, 3, 8)\n"
                                    "json.keep = img\n"
                                    "print(json.dumps([img.width]))\n");

const std::map<QString, std::function<void(Host&)>> stages = {
    {QStringLiteral("library_loaded"), [](Host& host) { host.loader.load(); }},
    {QStringLiteral("library_unloaded"),
     [](Host& host) {
         host.loader.load();
         host.loader.unload();
     }},
    {QStringLiteral("created"), [](Host& host) { host.plugin(); }},
    {QStringLiteral("initialised"), [](Host& host) { host.initialised(); }},
    {QStringLiteral("in_the_start_notification"),
     [](Host& host) {
         host.initialised();
         host.run(work, writeOut, [](void*, void*) { leave(); });
     }},
    {QStringLiteral("in_an_output_callback"),
     [](Host& host) {
         host.initialised();
         host.run(work, [](const QString&, bool) { leave(); });
     }},
    {QStringLiteral("in_an_output_callback_of_the_second_run"),
     [](Host& host) {
         host.initialised();
         host.run(work);
         host.run(work, [](const QString&, bool) { leave(); });
     }},
    {QStringLiteral("in_a_nested_event_loop"),
     [](Host& host) {
         host.environment.onWait = [](double) {
             QEventLoop loop;
             QTimer::singleShot(0, &loop, leave);
             loop.exec();
         };
         host.initialised();
         host.run(work + QStringLiteral("def f(): vantrel.wait(1)\nf()"));
     }},
    {QStringLiteral("after_a_run"),
     [](Host& host) {
         host.initialised();
         host.run(work);
     }},
    {QStringLiteral("by_exit_after_a_run"),
     [](Host& host) {
         host.initialised();
         host.run(work);
         leave();
     }},
    {QStringLiteral("after_a_failed_run"),
     [](Host& host) {
         host.initialised();
         host.plugin()->runScript(work + QStringLiteral("raise ValueError"), &host.environment, pythonHome, nullptr,
                                  nullptr, writeOut);
     }},
    {QStringLiteral("after_a_native_exception"),
     [](Host& host) {
         host.environment.onWait = [](double) { throw std::runtime_error("wait"); };
         host.initialised();
         qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
         host.plugin()->runScript(QStringLiteral("import sys\nsys.__stdout__.write('direct ')\n") + work +
                                      QStringLiteral("vantrel.wait(1)"),
                                  &host.environment, pythonHome, nullptr, nullptr, writeOut);
         delete host.loader.instance();
         qInstallMessageHandler(nullptr);
     }},
    {QStringLiteral("after_finalising"),
     [](Host& host) {
         host.initialised();
         host.run(work);
         delete host.loader.instance();
     }},
    {QStringLiteral("after_finalising_and_unloading"),
     [](Host& host) {
         host.initialised();
         host.run(work);
         host.loader.unload();
     }},
    {QStringLiteral("after_a_second_start"),
     [](Host& host) {
         host.initialised();
         host.run(work);
         host.initialised();
         host.run(work);
     }},
    {QStringLiteral("after_a_second_start_and_finalising"),
     [](Host& host) {
         host.initialised();
         host.run(work);
         host.initialised();
         host.run(work);
         delete host.loader.instance();
     }},
    {QStringLiteral("after_finalising_and_a_new_start"),
     [](Host& host) {
         for (int i = 0; i < 3; ++i) {
             host.initialised();
             host.run(work);
             delete host.loader.instance();
         }
         host.initialised();
         host.run(work);
     }},
    {QStringLiteral("after_runs_on_other_threads"),
     [](Host& host) {
         host.initialised();
         for (int i = 0; i < 3; ++i)
             std::thread([&host] { host.run(work); }).join();
         host.run(work);
     }},
    {QStringLiteral("after_runs_on_other_threads_and_finalising"),
     [](Host& host) {
         host.initialised();
         for (int i = 0; i < 3; ++i)
             std::thread([&host] { host.run(work); }).join();
         delete host.loader.instance();
     }},
    {QStringLiteral("after_finalising_on_another_thread"),
     [](Host& host) {
         host.initialised();
         host.run(work);
         std::thread([&host] { delete host.loader.instance(); }).join();
     }},
    {QStringLiteral("while_a_thread_of_the_script_runs"),
     [](Host& host) {
         host.initialised();
         host.run(
             QStringLiteral("import threading\n"
                            "def work():\n"
                            "    import time\n"
                            "    for i in range(100): time.sleep(0.001)\n" // so that it lives when the process leaves
                            "threading.Thread(target=work, daemon=True).start()\n"
                            "threading.Thread(target=work).start()\n"));
     }},
    {QStringLiteral("while_a_thread_of_the_script_calls_the_module"),
     [](Host& host) {
         host.initialised();
         host.run(QStringLiteral("import threading\n"
                                 "def work(vantrel=vantrel):\n"
                                 "    while True:\n"
                                 "        img = vantrel.Image()\n"
                                 "        img.alloc(8, 8, 3, 8)\n"
                                 "        bytes(img)\n"
                                 "threading.Thread(target=work, daemon=True).start()\n"));
         std::this_thread::sleep_for(std::chrono::milliseconds(20));
     }},
    {QStringLiteral("by_system_exit_on_another_thread"),
     [](Host& host) {
         host.initialised();
         std::thread([&host] { host.run(work); }).join();
         host.run(QStringLiteral("raise SystemExit"));
     }},
    {QStringLiteral("script"),
     [](Host& host) {
         host.initialised();
         host.run(givenScript);
     }},
    {QStringLiteral("script_on_another_thread"),
     [](Host& host) {
         host.initialised();
         std::thread([&host] { host.run(givenScript); }).join();
     }},
    {QStringLiteral("script_after_others_of_a_host_that_leaves_by_itself"),
     [](Host& host) {
         const auto leaveFirst = [](void*, void*) { on_exit([](int status, void*) { _exit(status); }, nullptr); };
         host.initialised();
         host.run(QStringLiteral("pass"), writeOut, leaveFirst);
         host.run(QStringLiteral("pass"), writeOut, leaveFirst);
         host.run(givenScript, writeOut, leaveFirst);
     }},
    {QStringLiteral("script_without_output_callback"),
     [](Host& host) {
         host.initialised();
         host.run(givenScript, nullptr);
         delete host.loader.instance();
     }},
};

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    const auto stage = arguments.size() >= 4 ? stages.find(arguments[1]) : stages.end();
    if (stage == stages.end())
        return 99;
    pluginFile = arguments[2];
    pythonHome = arguments[3];
    givenScript = arguments.value(4);
    Host host;
    stage->second(host);
    return 0;
}
