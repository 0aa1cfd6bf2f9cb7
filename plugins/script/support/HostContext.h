#pragma once

#include "PythonApi.h"

#include <QtCore/QString>

class IxAppDelegate;
class IxScriptEnvironment;

// Access to the host: its environment, application, help texts and paths.

/// The environment of the latest run; null before the first. Owned by the host.
extern IxScriptEnvironment* g_pScriptPlugin;

/// Sets the documentation of the method tables to the environment's help texts, which are not copied. Does nothing
/// without an environment. Skips a table that is null or has no name.
void fx_addHelp(const char* moduleName, PyMethodDef* moduleFuncs, const char* objectName, PyMethodDef* objectMethods);

/// Whether the script runs on the GUI thread. If not, returns false and sets an Exception with message as its text.
bool fx_onMainThread(const char* message = "running GUI function from non-main thread");

/// The application. Null with an error set if the host has none.
IxAppDelegate* fx_delegate();

/// Starts every function that works on windows: checks the thread, then parses the arguments. Returns the application,
/// or null with an error set.
template<typename... Targets>
IxAppDelegate* fx_enter(PyObject* args, const char* format, Targets*... targets)
{
    if (!fx_onMainThread() || !PyArg_ParseTuple(args, format, targets...))
        return nullptr;
    return fx_delegate();
}

/// Resolves a script's path through the environment. Without an environment returns the path as it is.
QString fx_resolvePath(const char* utf8);
