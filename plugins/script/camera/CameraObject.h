#pragma once

#include "support/Convert.h"

class CxCameraParameters;
class CxValue;
class QString;
struct SxCameraInfo;

// The type vantrel.Camera, for the files that implement it.

/// The instance record.
struct pycam_userdata {
    PyObject_HEAD void* cameraHandle; ///< one of the host's opened cameras, borrowed; null if none is attached
};

/// The type object of the running interpreter; null until the module exists.
extern PyTypeObject* TxPyCameraType;

/// Whether the object is a vantrel.Camera.
inline bool fx_cam_isCamera(PyObject* object)
{
    return object && Py_TYPE(object) == TxPyCameraType;
}

/// The parameter store of the attached camera. Null without an error if self is null, if no camera is attached or if
/// the camera is gone. Each call asks the host again. The store stays valid until other host code runs.
CxCameraParameters* fx_cam_parameters(PyObject* self);

// ---- attributes for parameters: CameraAttributes.cpp ----

/// Prepares the look-up's table of known names. False with an error set if memory runs out.
bool fx_cam_prepareAttributes();

PyObject* fx_pycam_GetAttrO(PyObject* self, PyObject* name);

/// The methods that the look-up binds: for set_ names, for enable_ and disable_ names, and for get_ and is_ names.
extern PyMethodDef px_cam_param_setter;
extern PyMethodDef px_cam_param_setter_bool;
extern PyMethodDef px_cam_param_getter;

// ---- reading and writing parameters: CameraParameters.cpp ----

/// Writes a parameter and returns the status as a Python int. Null with an error set if the value has a wrong type;
/// null without an error if there is no camera. For an integer that does not fit a long, returns the status and leaves
/// an OverflowError pending.
PyObject* fx_pycam_set_parameter_helper(PyObject* self, const QString& name, PyObject* value);

/// Reads a parameter or, with a suffix, one of its limits. Null with an error set if the camera does not support the
/// parameter; null without an error if there is no camera.
PyObject* fx_pycam_get_parameter_helper(PyObject* self, const QString& name);

PyObject* fx_pycam_SetParam(PyObject* self, PyObject* args);
PyObject* fx_pycam_GetParam(PyObject* self, PyObject* args);

/// Reads one item of a camera's description by its key, for example device_sn. The model id is an integer; all other
/// items are texts. False, with value unchanged, for an unknown key.
bool fx_cam_describe(const SxCameraInfo& info, const QString& key, CxValue& value);

// ---- other methods: CameraRegion.cpp, CameraSettings.cpp, CameraCapture.cpp ----

PyObject* fx_pycam_SetRoi(PyObject* self, PyObject* args);
PyObject* fx_pycam_GetRoi(PyObject* self, PyObject* args);
PyObject* fx_pycam_SaveSettingsToFile(PyObject* self, PyObject* args);
PyObject* fx_pycam_LoadSettingsFromFile(PyObject* self, PyObject* args);
PyObject* fx_pycam_AskUserCaptureImage(PyObject* self, PyObject* args);
PyObject* fx_pycam_RestartWithDefaultSettings(PyObject* self, PyObject* args);
