#pragma once

#include "PythonApi.h"

class CxCameraParameters;

// The type vantrel.Camera, as its own parts see it.

/// The instance record.
struct pycam_userdata {
    PyObject_HEAD void* cameraHandle; ///< one of the host's opened cameras, borrowed; null when none is attached
};

/// The type object of the running interpreter; null until the module is made.
extern PyTypeObject* TxPyCameraType;

/// The object's record.
inline pycam_userdata& fx_cam_record(PyObject* self)
{
    return *reinterpret_cast<pycam_userdata*>(self);
}

/// Whether the object is a vantrel.Camera.
inline bool fx_cam_isCamera(PyObject* object)
{
    return object && Py_TYPE(object) == TxPyCameraType;
}

/// The parameter store of the attached camera; null (no error set) for no object, for an object that is attached to
/// none and for a camera that is gone. Asked of the host anew at each call, and valid until other host code runs.
CxCameraParameters* fx_cam_parameters(PyObject* self);

// ---- dynamic access to parameters: CameraParameters.cpp ----

/// Prepares what the look-up keeps; false with an error set when there is no memory for it.
bool fx_cam_prepareAttributes();

PyObject* fx_pycam_GetAttrO(PyObject* self, PyObject* name);
PyObject* fx_pycam_SetParam(PyObject* self, PyObject* args);
PyObject* fx_pycam_GetParam(PyObject* self, PyObject* args);

// ---- region of interest, settings files, restart, capture: CameraSetup.cpp ----

PyObject* fx_pycam_SetRoi(PyObject* self, PyObject* args);
PyObject* fx_pycam_GetRoi(PyObject* self, PyObject* args);
PyObject* fx_pycam_SaveSettingsToFile(PyObject* self, PyObject* args);
PyObject* fx_pycam_LoadSettingsFromFile(PyObject* self, PyObject* args);
PyObject* fx_pycam_AskUserCaptureImage(PyObject* self, PyObject* args);
PyObject* fx_pycam_RestartWithDefaultSettings(PyObject* self, PyObject* args);
