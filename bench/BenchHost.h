#pragma once

#include "CxScriptLangInterface.h"
#include "support/FakeHost.h"

#include <QtCore/QPluginLoader>
#include <QtCore/QString>

/// The plugin in a host without windows. A benchmark program creates one and keeps it to the end.
class BenchHost
{
public:
    /// pluginFile  the plugin library. If it cannot be loaded, the program ends with a message.
    /// pythonHome  the home directory of the plugin's Python.
    BenchHost(const QString& pluginFile, const QString& pythonHome);

    /// Ends the interpreter.
    ~BenchHost();

    BenchHost(const BenchHost&) = delete;
    BenchHost& operator=(const BenchHost&) = delete;

    /// Runs a script and discards its output. If the script fails, the program ends with a message.
    void run(const QString& script);

    /// Runs a script and returns its output. If the script fails, the program ends with a message.
    QString printedBy(const QString& script);

    /// Runs a script, discards its output, and returns what it writes to its error stream.
    QString errorTextOf(const QString& script);

    CxScriptLangInterface& plugin() { return *m_plugin; }
    FakeDelegate& delegate() { return m_delegate; }

    /// The program's host. Must exist.
    static BenchHost& instance();

private:
    QString runInto(const QString& script, void (*output)(const QString&, bool));

    QPluginLoader m_loader;
    QString m_pythonHome;
    FakeEnvironment m_environment;
    FakeDelegate m_delegate;
    CxScriptLangInterface* m_plugin = nullptr;
};
