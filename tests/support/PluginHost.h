#pragma once

#include "CxScriptLangInterface.h"
#include "FakeHost.h"

#include <QtCore/QList>
#include <QtCore/QPluginLoader>
#include <QtCore/QString>

#include <gtest/gtest.h>

#include <functional>

/// Loads the plugin under test through Qt's plugin mechanism, and runs scripts with a fake environment and delegate.
class PluginHost
{
public:
    /// Which interpreter serves the runs. NumPy does not survive a second start of one: tests that use NumPy share the
    /// one that lives until the process ends.
    enum Interpreter { OfItsOwn, Shared };

    explicit PluginHost(Interpreter interpreter = OfItsOwn);

    /// Destroys the plugin object, and with it the interpreter, unless it is shared.
    ~PluginHost();

    /// Destroys the shared interpreter, if there is one.
    static void endShared();

    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;

    /// Runs a script and returns the result text. `output` then holds what the script printed.
    QString run(const QString& script);
    QString run(const char* script) { return run(QString::fromUtf8(script)); }

    /// Everything printed by the latest run.
    QString printed() const { return output.join(QString()); }

    /// Destroys the plugin object and creates a new one. Not for a shared interpreter.
    void restart();

    QPluginLoader loader;
    CxScriptLangInterface* plugin = nullptr;
    FakeEnvironment environment;
    FakeDelegate delegate;

    static QStringList output;                                 ///< the texts that the output callback has received
    static std::function<void(const QString&, bool)> onOutput; ///< called for each of these texts

private:
    void load();

    Interpreter m_interpreter;
};

/// A test with a plugin host. It must leave no host image behind.
class PluginTest : public testing::Test
{
protected:
    PluginHost host;
};

/// The same with the interpreter that the tests of the process share.
class SharedPluginTest : public testing::Test
{
protected:
    PluginHost host{PluginHost::Shared};
};

/// Expects a run without errors; a failure shows the run's error text.
#define EXPECT_CLEAN_RUN(script) EXPECT_EQ(host.run(script).toStdString(), "")
