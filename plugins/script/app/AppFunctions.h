#pragma once

#include "support/PythonApi.h"

#include <QtCore/QString>

class IxAppDelegate;

// The functions of the module, one file a subject; FuncApp.cpp holds their table.

// ---- shared by them ----

/// False, with the guard's error set, when the script does not run on the GUI thread. message replaces the usual text.
bool fx_app_onMainThread(const char* message = "running GUI function from non-main thread");

/// The application; null with an error set when the host has none.
IxAppDelegate* fx_app_delegate();

/// What every function that touches windows begins with: the thread is checked, then the arguments are parsed. Returns
/// the application, or null with an error set.
template<typename... Targets>
IxAppDelegate* fx_app_enter(PyObject* args, const char* format, Targets*... targets)
{
    if (!fx_app_onMainThread() || !PyArg_ParseTuple(args, format, targets...))
        return nullptr;
    return fx_app_delegate();
}

/// The view identifier to use: a negative one stands for the active view.
int fx_app_resolveViewId(IxAppDelegate& delegate, int id);

/// A path given by a script, as the environment resolves it.
QString fx_app_resolvePath(const char* utf8);

/// A new reference to None, True or False.
PyObject* fx_app_none();
PyObject* fx_app_bool(bool value);

/// A new str.
PyObject* fx_app_text(const QString& text);

// ---- cameras: FuncCamera.cpp ----

PyObject* fx_pycams_GetCount(PyObject* module, PyObject* args);

// ---- views, files and video: AppViews.cpp ----

PyObject* fx_pyapp_OpenFile(PyObject* module, PyObject* args);
PyObject* fx_pyapp_SaveToFile(PyObject* module, PyObject* args);
PyObject* fx_pyapp_DuplicateView(PyObject* module, PyObject* args);
PyObject* fx_pyapp_GetActiveViewId(PyObject* module, PyObject* args);
PyObject* fx_pyapp_ActivateView(PyObject* module, PyObject* args);
PyObject* fx_pyapp_CloseView(PyObject* module, PyObject* args);
PyObject* fx_pyapp_TileViews(PyObject* module, PyObject* args);
PyObject* fx_pyapp_SwitchFullScreen(PyObject* module, PyObject* args);
PyObject* fx_pyapp_WaitForNextFrame(PyObject* module, PyObject* args);
PyObject* fx_pyapp_Wait(PyObject* module, PyObject* args);
PyObject* fx_pyapp_GetViewImage(PyObject* module, PyObject* args);
PyObject* fx_pyapp_SetViewImage(PyObject* module, PyObject* args);
PyObject* fx_pyapp_NewViewWithImage(PyObject* module, PyObject* args);
PyObject* fx_pyapp_RecordVideoToFile(PyObject* module, PyObject* args);
PyObject* fx_pyapp_StopVideoRecording(PyObject* module, PyObject* args);

// ---- dialogs and messages: AppDialogs.cpp ----

PyObject* fx_pyapp_MessageBox(PyObject* module, PyObject* args);
PyObject* fx_pyapp_ShowNotification(PyObject* module, PyObject* args);
PyObject* fx_pyapp_PrintToErrorLog(PyObject* module, PyObject* args);
PyObject* fx_pyapp_AskUserForString(PyObject* module, PyObject* args);

// ---- scripts, menus and sounds: AppScripts.cpp ----

PyObject* fx_pyapp_AddMenuItem(PyObject* module, PyObject* args);
PyObject* fx_pyapp_RunScript(PyObject* module, PyObject* args);
PyObject* fx_pyapp_GetWorkingDirectory(PyObject* module, PyObject* args);
PyObject* fx_pyapp_PlaySound(PyObject* module, PyObject* args);

// ---- values shared by scripts: AppVariables.cpp ----

PyObject* fx_pyapp_SetGlobalVariableImg(PyObject* module, PyObject* args);
PyObject* fx_pyapp_GetGlobalVariableImg(PyObject* module, PyObject* args);
PyObject* fx_pyapp_SetGlobalVariableInt(PyObject* module, PyObject* args);
PyObject* fx_pyapp_GetGlobalVariableInt(PyObject* module, PyObject* args);
PyObject* fx_pyapp_SetGlobalVariableString(PyObject* module, PyObject* args);
PyObject* fx_pyapp_GetGlobalVariableString(PyObject* module, PyObject* args);

// ---- processing chains: AppChain.cpp ----

PyObject* fx_pyapp_AddChainObject(PyObject* module, PyObject* args);
