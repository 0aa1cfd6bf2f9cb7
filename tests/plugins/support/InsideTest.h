#pragma once

#include "CxPythonScriptPlugin.h"
#include "InterpreterSpy.h"
#include "ScriptModule.h"
#include "support/FakeHost.h"
#include "support/HostContext.h"
#include "support/InterpreterThread.h"
#include "support/TestSettings.h"

#include <QtCore/QStringList>

#include <gtest/gtest.h>

#include <memory>

/// A test with the plugin object itself instead of its interface.
class InsideTest : public testing::Test
{
protected:
    InsideTest()
    {
        InterpreterSpy::reset();
        plugin->init();
    }
    ~InsideTest() override
    {
        plugin.reset();
        thread.reset();
        g_pScriptPlugin = nullptr;
    }
    InsideTest(const InsideTest&) = delete;
    InsideTest& operator=(const InsideTest&) = delete;

    QString run(const char* script, const QString& home = TestSettings::pythonHome)
    {
        output.clear();
        QString result = plugin->runScript(QString::fromUtf8(script), &environment, home, nullptr, nullptr,
                                           [](const QString& text, bool) { output += text; });
        useInterpreter();
        return result;
    }

    /// Lets the test itself use the interpreter once it runs.
    void useInterpreter()
    {
        if (!thread)
            thread = std::make_unique<InterpreterThread>();
    }

    static inline QString output;
    std::unique_ptr<InterpreterThread> thread;
    FakeEnvironment environment;
    FakeDelegate delegate;
    std::unique_ptr<CxPythonScriptPlugin> plugin = std::make_unique<CxPythonScriptPlugin>();
};
