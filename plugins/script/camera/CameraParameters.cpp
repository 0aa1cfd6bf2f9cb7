// Reading and writing the parameters of a camera by name: cam.get_param("level:max"). The attributes for parameters
// (CameraAttributes.cpp) use these functions, too.

#include "CameraNames.h"
#include "CameraObject.h"
#include "CameraParamNames.h"
#include "CxCameraParameters.h"

#include <QtCore/QString>

namespace {

/// The Python form of a value; None for an empty one.
PyObject* toPython(const CxValue& value)
{
    switch (value.type()) {
    case CxValue::Integer:
        return PyLong_FromLong(value.toInt());
    case CxValue::Floating:
        return PyFloat_FromDouble(double(value.toFloat()));
    case CxValue::Boolean:
        return fx_bool(value.toBool());
    case CxValue::String:
        return fx_text(value.toString());
    case CxValue::Empty:
        break;
    }
    return fx_none();
}

/// False with an error set for a Python value that no parameter can take.
bool fromPython(PyObject* object, CxValue& value)
{
    // Integers come first, so that True and False become 1 and 0, as scripts expect.
    if (fx_isInteger(object)) {
        // Keeps the low 32 bits, unchecked. An integer that does not fit a long becomes -1 and leaves an error pending.
        // The value is still written; the script gets the error afterwards.
        value = CxValue::fromInt(qint32(PyLong_AsLong(object)));
    } else if (Py_TYPE(object) == &PyBool_Type) {
        value = CxValue::fromBool(object == Py_True);
    } else if (fx_isFloat(object)) {
        value = CxValue::fromFloat(float(PyFloat_AsDouble(object)));
    } else if (fx_isText(object)) {
        value = CxValue::fromString(fx_textOf(object).value_or(QString()));
    } else {
        fx_raise("Unsupported camera parameter value type.");
        return false;
    }
    return true;
}

PyObject* notSupported()
{
    return fx_raise("Parameter not supported by the camera.");
}

} // namespace

// ---- shared with the other parts of the type ----

bool fx_cam_describe(const SxCameraInfo& info, const QString& key, CxValue& value)
{
    if (key == CameraParamNames::deviceSerialNumber)
        value = CxValue::fromString(info.serialNumber);
    else if (key == CameraParamNames::deviceInstancePath)
        value = CxValue::fromString(info.instancePath);
    else if (key == CameraParamNames::deviceType)
        value = CxValue::fromString(info.deviceType);
    else if (key == CameraParamNames::deviceName)
        value = CxValue::fromString(info.deviceName);
    else if (key == CameraParamNames::deviceUserId)
        value = CxValue::fromString(info.userId);
    else if (key == CameraParamNames::deviceModelId)
        value = CxValue::fromInt(info.modelId);
    else
        return false;
    return true;
}

// ---- workers ----

PyObject* fx_pycam_set_parameter_helper(PyObject* self, const QString& name, PyObject* object)
{
    CxCameraParameters* parameters = fx_cam_parameters(self);
    if (!parameters)
        return nullptr;
    CxValue value;
    if (!fromPython(object, value))
        return nullptr;
    if (const CxCameraParam* param = parameters->findParam(name, false)) {
        const CxValue::ExType type = param->type(); // that of its current value, without copying the value
        if (type != CxValue::Empty)
            value = value.converted(type);
    }
    int status = 0;
    parameters->setParamDirect(name, value, &status, ExCommitRefreshGuiMode::CommitAndRefresh);
    return PyLong_FromLong(status);
}

PyObject* fx_pycam_get_parameter_helper(PyObject* self, const QString& name)
{
    CxCameraParameters* parameters = fx_cam_parameters(self);
    if (!parameters)
        return nullptr;
    const auto [base, selected] = fx_cam_splitSuffix(name);
    const CxCameraParam* param = parameters->findParam(base, false);
    if (!param) {
        CxValue value;
        if (fx_cam_describe(parameters->cameraInfo(), name, value) || parameters->getParamDirect(name, value, nullptr))
            return toPython(value);
        return notSupported();
    }
    if (param->notSupported)
        return notSupported();
    switch (selected) {
    case CameraParameterName::Selected::Minimum:
        return toPython(param->minimum);
    case CameraParameterName::Selected::Maximum:
        return toPython(param->maximum);
    case CameraParameterName::Selected::Increment:
        return toPython(param->increment);
    case CameraParameterName::Selected::Value:
        break;
    }
    return toPython(param->paramValue());
}

// ---- methods ----

PyObject* fx_pycam_SetParam(PyObject* self, PyObject* args)
{
    const char* name = nullptr;
    PyObject* value = nullptr;
    if (!self || !PyArg_ParseTuple(args, "sO", &name, &value))
        return nullptr;
    return fx_pycam_set_parameter_helper(self, QString::fromUtf8(name), value);
}

PyObject* fx_pycam_GetParam(PyObject* self, PyObject* args)
{
    const char* name = nullptr;
    if (!self || !PyArg_ParseTuple(args, "s", &name))
        return nullptr;
    return fx_pycam_get_parameter_helper(self, QString::fromUtf8(name));
}
