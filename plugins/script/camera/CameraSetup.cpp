// What concerns a camera as a whole: region of interest, settings files, restart, the capture dialog, shading presets.

#include "CameraObject.h"
#include "CameraRestart.h"
#include "CxCameraParameters.h"
#include "CxImageData.h"
#include "IxAppDelegate.h"
#include "OwnedPicBuf.h"
#include "ScriptModule.h"
#include "app/AppFunctions.h"

#include <QtCore/QRect>
#include <QtCore/QString>

#include <algorithm>
#include <memory>

// ---- region of interest ----

PyObject* fx_pycam_SetRoi(PyObject* self, PyObject* args)
{
    CxCameraParameters* parameters = fx_cam_parameters(self);
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    if (!parameters || !PyArg_ParseTuple(args, "iiii", &x, &y, &width, &height))
        return nullptr;
    parameters->setROIRectParams(x, y, width, height, true, true);
    return fx_app_none();
}

PyObject* fx_pycam_GetRoi(PyObject* self, PyObject* /*args*/)
{
    const CxCameraParameters* parameters = fx_cam_parameters(self);
    if (!parameters)
        return nullptr;
    const QList<QRect> regions = parameters->currentROIRectParams();
    if (regions.isEmpty()) {
        PyErr_SetString(PyExc_Exception, "Camera has no region of interest");
        return nullptr;
    }
    const QRect& region = regions.first();
    return Py_BuildValue("iiii", region.left(), region.top(), region.right() - region.left() + 1,
                         region.bottom() - region.top() + 1);
}

// ---- settings files ----

/// Parses the path of a settings file and finds the camera; null (perhaps without an error) when either is missing.
static CxCameraParameters* parsePath(PyObject* self, PyObject* args, QString& path)
{
    const char* utf8 = nullptr;
    if (!self || !PyArg_ParseTuple(args, "s", &utf8))
        return nullptr;
    CxCameraParameters* parameters = fx_cam_parameters(self);
    if (parameters)
        path = fx_app_resolvePath(utf8);
    return parameters;
}

PyObject* fx_pycam_SaveSettingsToFile(PyObject* self, PyObject* args)
{
    QString path;
    const CxCameraParameters* parameters = parsePath(self, args, path);
    if (!parameters)
        return nullptr;
    parameters->saveParamValuesToFile(path, CxCameraParam::All);
    return fx_app_none();
}

PyObject* fx_pycam_LoadSettingsFromFile(PyObject* self, PyObject* args)
{
    QString path;
    CxCameraParameters* parameters = parsePath(self, args, path);
    if (!parameters)
        return nullptr;
    parameters->loadParamValuesFromFile(path, CxCameraParam::All, nullptr, true);
    return fx_app_none();
}

// ---- restart ----

PyObject* fx_pycam_RestartWithDefaultSettings(PyObject* self, PyObject* /*args*/)
{
    if (!self)
        return nullptr;
    void* restarted = fx_script_restartCamera(fx_cam_record(self).cameraHandle);
    if (restarted)
        fx_cam_record(self).cameraHandle = restarted;
    return fx_app_bool(restarted != nullptr);
}

// ---- capture dialog ----

PyObject* fx_pycam_AskUserCaptureImage(PyObject* self, PyObject* args)
{
    const char* givenTitle = nullptr;
    const char* givenMessage = nullptr;
    int option = -1;
    if (!self || !PyArg_ParseTuple(args, "|ssi", &givenTitle, &givenMessage, &option))
        return nullptr;
    QString title = QStringLiteral("Capture Image");
    if (givenTitle && *givenTitle)
        title = QString::fromUtf8(givenTitle);
    QString message = QStringLiteral("Get the image right and press Capture button.");
    if (givenMessage && *givenMessage)
        message = QString::fromUtf8(givenMessage);
    IxAppDelegate* delegate = fx_app_delegate();
    if (!delegate)
        return nullptr;

    std::unique_ptr<SxPicBuf> record(delegate->askUserCaptureImage(nullptr, fx_cam_record(self).cameraHandle, &title,
                                                                   &message, option >= 0, &option, 0));
    if (!record)
        return PyLong_FromLong(-1);
    OwnedPicBuf pixels;
    pixels.buffer = *record;
    auto image = std::make_unique<CxImageData>();
    image->setPicBuf(*record);
    static_cast<void>(pixels.release());
    record.reset();
    if (!delegate->newViewWithImage(image.get(), title))
        return PyLong_FromLong(-1);
    static_cast<void>(image.release());
    return PyLong_FromLong(delegate->activeViewId());
}

// ---- shading presets ----

/// The first preset of that name, or the end.
static QList<CxShadingPreset>::iterator findPreset(QList<CxShadingPreset>& presets, const QString& name)
{
    return std::find_if(presets.begin(), presets.end(),
                        [&name](const CxShadingPreset& preset) { return preset.name == name; });
}

PyObject* fx_pycam_CreateShadingPreset(PyObject* self, PyObject* args)
{
    const char* name = nullptr;
    const char* reference = nullptr;
    const char* note = "";
    if (!fx_cam_isCamera(self) || !PyArg_ParseTuple(args, "ss|s", &name, &reference, &note))
        return nullptr;
    CxCameraParameters* parameters = fx_cam_parameters(self);
    if (!parameters)
        return nullptr;
    QList<CxShadingPreset>& presets = parameters->shadingPresets;
    auto preset = findPreset(presets, QString::fromUtf8(name));
    if (preset == presets.end()) {
        CxShadingPreset added;
        added.name = QString::fromUtf8(name);
        presets.append(added);
        preset = presets.end() - 1;
    }
    preset->saveCurrentValuesFrom(parameters);
    preset->reference = QString::fromUtf8(reference);
    preset->note = QString::fromUtf8(note);
    parameters->notifyShadingChanged();
    return fx_app_none();
}

PyObject* fx_pycam_ActivateShadingPreset(PyObject* self, PyObject* args)
{
    CxCameraParameters* parameters = fx_cam_isCamera(self) ? fx_cam_parameters(self) : nullptr;
    const char* name = "";
    if (!parameters || !PyArg_ParseTuple(args, "|s", &name))
        return nullptr;
    const QString wanted = QString::fromUtf8(name);
    const auto preset = findPreset(parameters->shadingPresets, wanted);
    if (!wanted.isEmpty() && preset != parameters->shadingPresets.end())
        preset->activateValuesTo(parameters);
    return fx_app_none();
}
