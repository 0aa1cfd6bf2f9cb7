#pragma once

#include "CxScriptLangInterface.h"
#include "support/PythonApi.h"

#include <QtCore/QMutex>
#include <QtCore/QObject>

#include <list>
#include <string>
#include <thread>

/// The plugin's only object: runs Python scripts for the host.
///
/// The first run starts the interpreter, which lives until the object is destroyed. All scripts of the process share
/// the interpreter and its namespace __main__. A run that completes deletes the names that it added; the values that it
/// gave to older names stay.
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

    /// Sets the documentation of every table entry to the help text of the latest run's environment, which may be null.
    /// Changes nothing without an environment. The host owns the texts; they are not copied. Skips a table that is null
    /// or has no name. Call it before a module or type is made from the tables.
    static void addHelpToPythonFunctions(const char* moduleName, PyMethodDef* moduleFuncs, const char* objectName,
                                         PyMethodDef* objectMethods);

    /// The names in __main__, in UTF-8 and in the order of the namespace.
    std::list<std::string> listLocalVariables();

    /// Deletes every name from __main__ that is not in the list `before`.
    void deleteNewLocalVariables(const std::list<std::string>& before);

    /// Writes every name of __main__ and its value to the log, to help debug a host.
    void dumpLocalVariables();

private:
    void startInterpreter(IxScriptEnvironment* pEnv, const QString& strPythonHome);
    QString evaluate(const std::string& script, void (*fnStarted)(void*, void*), void* pStartedData,
                     void (*fnOutput)(const QString&, bool));

    QMutex m_lockScript; // held during the whole run
    bool m_bPythonInitialized = false;
    std::thread::id m_lastThread; // the thread of the latest run
};
