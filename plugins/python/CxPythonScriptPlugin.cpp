#include "CxPythonScriptPlugin.h"

#include "CxImageData.h"
#include "ExitReport.h"
#include "InterpreterLibrary.h"
#include "IxScriptEnvironment.h"
#include "MainThread.h"
#include "OutputRedirection.h"
#include "ScriptModule.h"
#include "support/Convert.h"
#include "support/ErrorLog.h"
#include "support/HostContext.h"
#include "support/InterpreterThread.h"
#include "support/NativeGuard.h"
#include "support/PyRef.h"

#include <QtCore/QCoreApplication>

#include <memory>
#include <utility>

CxPythonScriptPlugin::~CxPythonScriptPlugin()
{
    if (m_bPythonInitialized) {
        const InterpreterThread thread;
        bool crashed = false;
        fx_dropNativeException();
        try {
            fx_takeOverMainThread();
            emb::release_saved_streams(); // a run that host code ended did not release them
            Py_Finalize();
            crashed = fx_dropNativeException();
        } catch (...) {
            crashed = true;
        }
        // The same prefix as for a failed run, so that one search of the log finds both.
        if (crashed)
            fx_logError(QStringLiteral("CxPythonScriptPlugin::runScript(): %1")
                            .arg(QStringLiteral("Python crashed in Finalize")));
    }
    m_bPythonInitialized = false;
}

bool CxPythonScriptPlugin::init()
{
    m_bPythonInitialized = false;
    return true;
}

QString CxPythonScriptPlugin::languageVersion()
{
    QString version = QString::fromUtf8(Py_GetVersion());
    const qsizetype blank = version.indexOf(QLatin1Char(' '));
    if (blank > 0)
        version.truncate(blank);
    return QStringLiteral("Python ") + version;
}

QString CxPythonScriptPlugin::runScript(const QString& strScript, IxScriptEnvironment* pEnv,
                                        const QString& strPythonHome, void (*fnStarted)(void*, void*),
                                        void* pStartedData, void (*fnOutput)(const QString&, bool))
{
    QString result;
    g_pScriptPlugin = pEnv; // before the lock, so that a running script uses the newest environment
    const QMutexLocker locker(&m_lockScript);
    const InterpreterThread thread;
    try {
        fx_dropNativeException();
        const std::string script = strScript.toStdString();
        if (!m_bPythonInitialized)
            startInterpreter(pEnv, strPythonHome);
        if (std::exchange(m_lastThread, std::this_thread::get_id()) != std::this_thread::get_id())
            fx_takeOverMainThread(); // the script may end the process
        result = evaluate(script, fnStarted, pStartedData, fnOutput);
    } catch (...) {
        if (result.isEmpty())
            result = QStringLiteral("Python rasied exception");
        fx_logError(QStringLiteral("CxPythonScriptPlugin::runScript(): %1").arg(result));
        // The streams' targets are gone. Writes do nothing until the next run sets new ones.
        emb::clear_writers();
    }
    return result;
}

void CxPythonScriptPlugin::startInterpreter(IxScriptEnvironment* pEnv, const QString& strPythonHome)
{
    fx_makeInterpreterSymbolsGlobal();

    const std::wstring program = QCoreApplication::applicationFilePath().toStdWString();
    const std::wstring home = strPythonHome.toStdWString();
    fx_setInterpreterPaths(program, home);
    fx_addBuiltinModule("emb", PyInit_emb);
    fx_pyapp_register();
    Py_Initialize();
    ExitReport::writeWhenInterpreterEnds();

    PyObject* main = PyImport_AddModule("__main__");
    if (pEnv && main) {
        for (const auto& definition : pEnv->apiParamDefs())
            PyModule_AddStringConstant(main, definition.name.toUtf8().constData(),
                                       definition.value.toUtf8().constData());
        for (const auto& definition : pEnv->apiParamEnumVals())
            PyModule_AddIntConstant(main, definition.name.toUtf8().constData(), definition.value);
    }
    PyErr_Clear(); // a constant that could not be published is left out

    PyImport_ImportModule("emb"); // kept for the life of the process
    PyErr_Clear();
    fx_pyapp_RunPythonString("import vantrel");
    m_bPythonInitialized = true;
}

QString CxPythonScriptPlugin::evaluate(const std::string& script, void (*fnStarted)(void*, void*), void* pStartedData,
                                       void (*fnOutput)(const QString&, bool))
{
    const std::list<std::string> names = listLocalVariables();
    if (fnStarted)
        fnStarted(nullptr, pStartedData);

    // Shared, because a script may keep the stream object after the run.
    const auto errors = std::make_shared<std::string>();
    const ExitReport report(*errors);
    // Replacing an object may run a script's finaliser, which may call the host. An exception from the host ends the
    // run at that step.
    emb::set_stderr([errors](const std::string& text) { errors->append(text); });
    fx_rethrowNativeException();

    if (fnOutput) {
        // print() writes its line feed separately, so all line feeds share one text. The text is not a literal: the
        // host may keep it after this library, with its literals, is unloaded.
        const QString lineFeed(QLatin1Char('\n'));
        emb::set_stdout([fnOutput, lineFeed](const std::string& text) {
            fnOutput(text == "\n" ? lineFeed : QString::fromStdString(text), false);
        });
        fx_rethrowNativeException();
        fx_script_runText(script);
        emb::reset_stdout();
        fx_rethrowNativeException();
    } else {
        fx_script_runText(script);
    }

    deleteNewLocalVariables(names);
    emb::reset_stderr();
    fx_rethrowNativeException();
    return QString::fromStdString(*errors);
}

void CxPythonScriptPlugin::addImageVariable(const QString& name, CxImageData* image)
{
    const InterpreterThread thread;
    PyRef object = PyRef::take(fx_pyimg_createNewImageObject(image, false));
    PyObject* main = object ? PyImport_AddModule("__main__") : nullptr;
    if (main && PyModule_AddObject(main, name.toUtf8().constData(), object.get()) == 0)
        static_cast<void>(object.release());
    PyErr_Clear();
    fx_forgetNativeException(); // from a finaliser of the name's previous value
}

void CxPythonScriptPlugin::addHelpToPythonFunctions(const char* moduleName, PyMethodDef* moduleFuncs,
                                                    const char* objectName, PyMethodDef* objectMethods)
{
    fx_addHelp(moduleName, moduleFuncs, objectName, objectMethods);
}
