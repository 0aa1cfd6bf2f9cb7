#pragma once

#include "CxPythonScriptPlugin.h"
#include "InterpreterSpy.h"
#include "ScriptModule.h"
#include "support/FakeHost.h"
#include "support/HostContext.h"
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
        g_pScriptPlugin = nullptr;
    }
    InsideTest(const InsideTest&) = delete;
    InsideTest& operator=(const InsideTest&) = delete;

    QString run(const char* script, const QString& home = TestSettings::pythonHome)
    {
        output.clear();
        return plugin->runScript(QString::fromUtf8(script), &environment, home, nullptr, nullptr,
                                 [](const QString& text, bool) { output += text; });
    }

    static inline QString output;
    FakeEnvironment environment;
    FakeDelegate delegate;
    std::unique_ptr<CxPythonScriptPlugin> plugin = std::make_unique<CxPythonScriptPlugin>();
};
