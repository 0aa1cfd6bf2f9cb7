// Flat-field shading presets. The host calls these functions; scripts do not see them.

#include "CameraObject.h"
#include "CxCameraParameters.h"
#include "ScriptModule.h"
#include "support/InterpreterThread.h"

#include <algorithm>

/// The first preset with this name, or the end of the list.
static QList<CxShadingPreset>::iterator findPreset(QList<CxShadingPreset>& presets, const QString& name)
{
    return std::find_if(presets.begin(), presets.end(),
                        [&name](const CxShadingPreset& preset) { return preset.name == name; });
}

PyObject* fx_pycam_CreateShadingPreset(PyObject* self, PyObject* args)
{
    const InterpreterThread thread;
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
    return fx_none();
}

PyObject* fx_pycam_ActivateShadingPreset(PyObject* self, PyObject* args)
{
    const InterpreterThread thread;
    CxCameraParameters* parameters = fx_cam_isCamera(self) ? fx_cam_parameters(self) : nullptr;
    const char* name = "";
    if (!parameters || !PyArg_ParseTuple(args, "|s", &name))
        return nullptr;
    const QString wanted = QString::fromUtf8(name);
    const auto preset = findPreset(parameters->shadingPresets, wanted);
    if (!wanted.isEmpty() && preset != parameters->shadingPresets.end())
        preset->activateValuesTo(parameters);
    return fx_none();
}
