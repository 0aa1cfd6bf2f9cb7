#pragma once

#include "support/Convert.h"

class CxCameraParameters;
class CxValue;
class QString;
struct SxCameraInfo;

// The type vantrel.Camera, as its own parts see it.

/// The instance record.
struct pycam_userdata {
    PyObject_HEAD void* cameraHandle; ///< one of the host's opened cameras, borrowed; null when none is attached
};

/// The type object of the running interpreter; null until the module is made.
extern PyTypeObject* TxPyCameraType;

/// Whether the object is a vantrel.Camera.
inline bool fx_cam_isCamera(PyObject* object)
{
    return object && Py_TYPE(object) == TxPyCameraType;
}

/// The parameter store of the attached camera; null (no error set) for no object, for an object that is attached to
/// none and for a camera that is gone. Asked of the host anew at each call, and valid until other host code runs.
CxCameraParameters* fx_cam_parameters(PyObject* self);

// ---- attributes that stand for parameters: CameraAttributes.cpp ----

/// Prepares what the look-up keeps; false with an error set when there is no memory for it.
bool fx_cam_prepareAttributes();

PyObject* fx_pycam_GetAttrO(PyObject* self, PyObject* name);

/// What the look-up binds: to names with set_, to those with enable_ and disable_, to those with get_ and is_.
extern PyMethodDef px_cam_param_setter;
extern PyMethodDef px_cam_param_setter_bool;
extern PyMethodDef px_cam_param_getter;

// ---- reading and writing parameters: CameraParameters.cpp ----

/// Writes a parameter. The status as a Python int; null with an error set for a value of a wrong type, and without one
/// when there is no camera. For an integer that does not fit a long the status comes together with a pending
/// OverflowError.
PyObject* fx_pycam_set_parameter_helper(PyObject* self, const QString& name, PyObject* value);

/// Reads a parameter, or with a suffix one of its limits. Null with an error set when the camera does not have it, and
/// without one when there is no camera.
PyObject* fx_pycam_get_parameter_helper(PyObject* self, const QString& name);

PyObject* fx_pycam_SetParam(PyObject* self, PyObject* args);
PyObject* fx_pycam_GetParam(PyObject* self, PyObject* args);

/// A piece of a camera's description by its key, device_sn and so on: texts, and the model id as an integer. False
/// (value unchanged) for any other key.
bool fx_cam_describe(const SxCameraInfo& info, const QString& key, CxValue& value);

// ---- region of interest, settings files, restart, capture dialog: a file each ----

PyObject* fx_pycam_SetRoi(PyObject* self, PyObject* args);
PyObject* fx_pycam_GetRoi(PyObject* self, PyObject* args);
PyObject* fx_pycam_SaveSettingsToFile(PyObject* self, PyObject* args);
PyObject* fx_pycam_LoadSettingsFromFile(PyObject* self, PyObject* args);
PyObject* fx_pycam_AskUserCaptureImage(PyObject* self, PyObject* args);
PyObject* fx_pycam_RestartWithDefaultSettings(PyObject* self, PyObject* args);
