#pragma once

#include "support/Convert.h"
#include "support/HostContext.h"

class IxAppDelegate;

// The functions of the module, one file per subject. FuncApp.cpp holds their table.

// ---- shared by the functions ----

/// Returns id, or the identifier of the active view if id is negative.
int fx_app_resolveViewId(IxAppDelegate& delegate, int id);

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
