#pragma once

#include "PythonApi.h"

#include <QtCore/QString>

class IxAppDelegate;
class IxScriptEnvironment;

// The host of the run in progress: its environment, its application, its help texts and paths.

/// The environment of the latest run; null before the first. Owned by the host.
extern IxScriptEnvironment* g_pScriptPlugin;

/// Fills the documentation of method tables from the environment's help texts, which are stored, not copied. Does
/// nothing without an environment. A table without its module or object name is left alone.
void fx_addHelp(const char* moduleName, PyMethodDef* moduleFuncs, const char* objectName, PyMethodDef* objectMethods);

/// Whether the script runs on the GUI thread. If not, returns false with an Exception set; message replaces its usual
/// text.
bool fx_onMainThread(const char* message = "running GUI function from non-main thread");

/// The application; null with an error set when the host has none.
IxAppDelegate* fx_delegate();

/// The begin of every function that touches windows: checks the thread, then parses the arguments. Returns the
/// application, or null with an error set.
template<typename... Targets>
IxAppDelegate* fx_enter(PyObject* args, const char* format, Targets*... targets)
{
    if (!fx_onMainThread() || !PyArg_ParseTuple(args, format, targets...))
        return nullptr;
    return fx_delegate();
}

/// The path to use for a path that a script gives, as the environment resolves it.
QString fx_resolvePath(const char* utf8);
