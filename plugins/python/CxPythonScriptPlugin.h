#pragma once

#include "CxScriptLangInterface.h"
#include "support/PythonApi.h"

#include <QtCore/QMutex>
#include <QtCore/QObject>

#include <list>
#include <string>
#include <thread>

/// The plugin's one object: runs Python scripts for the host.
///
/// The interpreter is started by the first run and lives until the object is destroyed; all scripts of the process
/// share it and its namespace __main__. Each run leaves that namespace as it found it, but for the values of names that
/// were there before.
class CxPythonScriptPlugin : public QObject, public CxScriptLangInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.tesmo.Vantrel.CxPythonScriptPlugin")
    Q_INTERFACES(CxScriptLangInterface)
public:
    CxPythonScriptPlugin() = default;
    ~CxPythonScriptPlugin() override;

    bool init() override;
    QString languageVersion() override;
    QString runScript(const QString& strScript, IxScriptEnvironment* pEnv, const QString& strPythonHome,
                      void (*fnStarted)(void*, void*), void* pStartedData,
                      void (*fnOutput)(const QString&, bool)) override;
    void addImageVariable(const QString& name, CxImageData* image) override;

    /// Sets the documentation of every entry of the tables to the text that the environment of the latest run has for
    /// it (perhaps none); without an environment nothing changes. The texts stay the host's and are not copied. A table
    /// that is null or has no name is left out. Called before a module or type is made from the tables.
    static void addHelpToPythonFunctions(const char* moduleName, PyMethodDef* moduleFuncs, const char* objectName,
                                         PyMethodDef* objectMethods);

    /// The names in __main__, UTF-8, in the namespace's order.
    std::list<std::string> listLocalVariables();

    /// Deletes every name from __main__ that is not among the given ones.
    void deleteNewLocalVariables(const std::list<std::string>& before);

    /// Writes every name of __main__ with its value to the log: an aid for whoever debugs a host.
    void dumpLocalVariables();

private:
    void startInterpreter(IxScriptEnvironment* pEnv, const QString& strPythonHome);
    QString evaluate(const std::string& script, void (*fnStarted)(void*, void*), void* pStartedData,
                     void (*fnOutput)(const QString&, bool));

    QMutex m_lockScript; // held for the whole of a run
    bool m_bPythonInitialized = false;
    std::thread::id m_lastThread; // that ran a script
};
