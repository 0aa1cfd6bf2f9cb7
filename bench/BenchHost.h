#pragma once

#include "CxScriptLangInterface.h"
#include "support/FakeHost.h"

#include <QtCore/QPluginLoader>
#include <QtCore/QString>

/// The plugin with a host without windows, for the whole of a benchmark program.
class BenchHost
{
public:
    /// pluginFile  the plugin library; the program ends with a message when it does not load.
    /// pythonHome  the home of its Python.
    BenchHost(const QString& pluginFile, const QString& pythonHome);

    /// Ends the interpreter.
    ~BenchHost();

    BenchHost(const BenchHost&) = delete;
    BenchHost& operator=(const BenchHost&) = delete;

    /// Runs a script and drops what it prints. The program ends with a message when the script fails.
    void run(const QString& script);

    /// Runs a script and returns what it prints.
    QString printedBy(const QString& script);

    /// Runs a script, drops what it prints, and returns what it writes to its error stream.
    QString errorTextOf(const QString& script);

    CxScriptLangInterface& plugin() { return *m_plugin; }
    FakeDelegate& delegate() { return m_delegate; }

    /// The only one of the program.
    static BenchHost& instance();

private:
    QString runInto(const QString& script, void (*output)(const QString&, bool));

    QPluginLoader m_loader;
    QString m_pythonHome;
    FakeEnvironment m_environment;
    FakeDelegate m_delegate;
    CxScriptLangInterface* m_plugin = nullptr;
};
