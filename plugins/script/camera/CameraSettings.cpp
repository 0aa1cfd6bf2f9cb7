// Settings files, and the restart of a camera with default settings.

#include "CameraObject.h"
#include "CameraRestart.h"
#include "CxCameraParameters.h"
#include "support/HostContext.h"

/// Parses the path of a settings file and finds the camera. Null with an error set if the path is not a text; null
/// without an error if there is no camera.
static CxCameraParameters* parsePath(PyObject* self, PyObject* args, QString& path)
{
    const char* utf8 = nullptr;
    if (!self || !PyArg_ParseTuple(args, "s", &utf8))
        return nullptr;
    CxCameraParameters* parameters = fx_cam_parameters(self);
    if (parameters)
        path = fx_resolvePath(utf8);
    return parameters;
}

PyObject* fx_pycam_SaveSettingsToFile(PyObject* self, PyObject* args)
{
    QString path;
    const CxCameraParameters* parameters = parsePath(self, args, path);
    if (!parameters)
        return nullptr;
    parameters->saveParamValuesToFile(path, CxCameraParam::All);
    return fx_none();
}

PyObject* fx_pycam_LoadSettingsFromFile(PyObject* self, PyObject* args)
{
    QString path;
    CxCameraParameters* parameters = parsePath(self, args, path);
    if (!parameters)
        return nullptr;
    parameters->loadParamValuesFromFile(path, CxCameraParam::All, nullptr, true);
    return fx_none();
}

// ---- restart ----

PyObject* fx_pycam_RestartWithDefaultSettings(PyObject* self, PyObject* /*args*/)
{
    if (!self)
        return nullptr;
    void* restarted = fx_script_restartCamera(fx_record<pycam_userdata>(self).cameraHandle);
    if (restarted)
        fx_record<pycam_userdata>(self).cameraHandle = restarted;
    return fx_bool(restarted != nullptr);
}
