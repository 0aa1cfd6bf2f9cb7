#pragma once

#include "PythonApi.h"

#include <QtCore/QString>

class IxAppDelegate;

// The functions of the module, one file a subject; FuncApp.cpp holds their table.

// ---- shared by them ----

/// False, with the guard's error set, when the script does not run on the GUI thread. message replaces the usual text.
bool fx_app_onMainThread(const char* message = "running GUI function from non-main thread");

/// The application; null with an error set when the host has none.
IxAppDelegate* fx_app_delegate();

/// The view identifier to use: a negative one stands for the active view.
int fx_app_resolveViewId(IxAppDelegate& delegate, int id);

/// A path given by a script, as the environment resolves it.
QString fx_app_resolvePath(const char* utf8);

/// A new reference to None, True or False.
PyObject* fx_app_none();
PyObject* fx_app_bool(bool value);

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
