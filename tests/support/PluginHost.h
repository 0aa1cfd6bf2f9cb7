#pragma once

#include "CxScriptLangInterface.h"
#include "FakeHost.h"

#include <QtCore/QList>
#include <QtCore/QPluginLoader>
#include <QtCore/QString>

#include <gtest/gtest.h>

#include <functional>

/// Loads the plugin under test, through Qt and nothing else, and runs
/// scripts with a fake environment and delegate.
class PluginHost
{
public:
    PluginHost();

    /// Destroys the plugin object, and with it the interpreter.
    ~PluginHost();

    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;

    /// Runs a script with the output callback; returns the result text. What was printed is in `output`.
    QString run(const QString& script);
    QString run(const char* script) { return run(QString::fromUtf8(script)); }

    /// Everything printed by the latest run.
    QString printed() const { return output.join(QString()); }

    /// Destroys the plugin object and makes a new one.
    void restart();

    QPluginLoader loader;
    CxScriptLangInterface* plugin = nullptr;
    FakeEnvironment environment;
    FakeDelegate delegate;

    static QStringList output;                                 ///< the pieces given to the output callback
    static std::function<void(const QString&, bool)> onOutput; ///< called for each of them
};

/// A test with a host. Afterwards no host image may be left.
class PluginTest : public testing::Test
{
protected:
    PluginHost host;
};

/// Compares a run's result with nothing, and shows it when there is something.
#define EXPECT_CLEAN_RUN(script) EXPECT_EQ(host.run(script).toStdString(), "")
