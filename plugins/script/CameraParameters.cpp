// Parameters of a camera by attribute name: cam.get_level(), cam.set_level(10), cam.enable_flag(),
// cam.get_level_maximum(); and by text: cam.get_param("level:max").

#include "CameraObject.h"
#include "CxCameraParameters.h"
#include "IxScriptEnvironment.h"
#include "NativeGuard.h"
#include "PyRef.h"
#include "ScriptModule.h"

#include <QtCore/QString>

#include <cstdlib>
#include <deque>

extern PyMethodDef px_cam_param_setter;
extern PyMethodDef px_cam_param_setter_bool;
extern PyMethodDef px_cam_param_getter;

namespace {

// ---- names ----

/// What an attribute name says, when its prefix is one of the five.
struct AttributeName {
    enum class Action { None, Read, Enable, Disable, Set };

    Action action = Action::None; ///< None: an ordinary attribute
    QString parameter;            ///< without prefix and range word: what the environment is asked about
    QString target;               ///< what is read or written: the name with the range word as a suffix
};

/// The suffix that stands for a range word at the end of a name; empty for any other ending.
QString rangeSuffix(const QString& ending)
{
    if (ending == QLatin1String("_maximum"))
        return QStringLiteral(":max");
    if (ending == QLatin1String("_minimum"))
        return QStringLiteral(":min");
    if (ending == QLatin1String("_increment"))
        return QStringLiteral(":inc");
    return QString();
}

AttributeName parseAttributeName(const QString& text)
{
    using Action = AttributeName::Action;
    AttributeName name;
    if (text.startsWith(QLatin1String("set_")))
        name.action = Action::Set;
    else if (text.startsWith(QLatin1String("get_")) || text.startsWith(QLatin1String("is_")))
        name.action = Action::Read;
    else if (text.startsWith(QLatin1String("enable_")))
        name.action = Action::Enable;
    else if (text.startsWith(QLatin1String("disable_")))
        name.action = Action::Disable;
    else
        return name;

    name.parameter = text.mid(text.indexOf(QLatin1Char('_')) + 1);
    name.target = name.parameter;
    const qsizetype last = name.parameter.lastIndexOf(QLatin1Char('_'));
    const QString suffix = last > 0 ? rangeSuffix(name.parameter.mid(last)) : QString();
    if (!suffix.isEmpty()) {
        name.parameter.truncate(last);
        name.target = name.parameter + suffix;
    }
    return name;
}

bool isText(PyObject* object)
{
    return object && (PyType_GetFlags(Py_TYPE(object)) & Py_TPFLAGS_UNICODE_SUBCLASS);
}

/// The text of a str; empty when it has no UTF-8 form.
QString toQString(PyObject* object)
{
    const PyRef utf8 = PyRef::take(PyUnicode_AsUTF8String(object));
    if (!utf8) {
        PyErr_Clear();
        return QString();
    }
    return QString::fromUtf8(PyBytes_AsString(utf8.get()), qsizetype(PyBytes_Size(utf8.get())));
}

// Scripts use the same few names again and again: what they say is worked out once. From name to index in the list;
// the dictionary belongs to the running interpreter.
PyObject* knownNames = nullptr;
std::deque<AttributeName> parsedNames;
constexpr std::size_t mostKnownNames = 1000;

/// What the attribute name says. The result is valid until the next call.
const AttributeName& parsed(PyObject* name)
{
    static AttributeName unkept;
    const bool plain = Py_TYPE(name) == &PyUnicode_Type;
    if (plain) {
        if (PyObject* index = PyDict_GetItem(knownNames, name))
            return parsedNames[PyLong_AsSize_t(index)];
    }
    AttributeName fresh = parseAttributeName(toQString(name));
    if (plain && parsedNames.size() < mostKnownNames) {
        const PyRef index = PyRef::take(PyLong_FromSize_t(parsedNames.size()));
        if (index && PyDict_SetItem(knownNames, name, index.get()) == 0) {
            parsedNames.push_back(std::move(fresh));
            return parsedNames.back();
        }
        PyErr_Clear();
    }
    unkept = std::move(fresh);
    return unkept;
}

// ---- values ----

/// The Python form of a value; None for an empty one.
PyObject* toPython(const CxValue& value)
{
    switch (value.type()) {
    case CxValue::Integer:
        return PyLong_FromLong(value.toInt());
    case CxValue::Floating:
        return PyFloat_FromDouble(double(value.toFloat()));
    case CxValue::Boolean:
        return PyBool_FromLong(value.toBool());
    case CxValue::String: {
        const QByteArray utf8 = value.toString().toUtf8();
        return PyUnicode_FromStringAndSize(utf8.constData(), utf8.size());
    }
    case CxValue::Empty:
        break;
    }
    return PyRef::retain(Py_None).release();
}

/// False with an error set for a Python value that no parameter can take.
bool fromPython(PyObject* object, CxValue& value)
{
    PyTypeObject* type = Py_TYPE(object);
    const unsigned long flags = PyType_GetFlags(type);
    // First, so that True and False arrive as 1 and 0, as scripts have always had them.
    if (flags & Py_TPFLAGS_LONG_SUBCLASS) {
        const long number = PyLong_AsLong(object);
        if (number == -1 && PyErr_Occurred())
            return false;
        value = CxValue::fromInt(qint32(number)); // the low 32 bits
    } else if (type == &PyBool_Type) {
        value = CxValue::fromBool(object == Py_True);
    } else if (type == &PyFloat_Type || PyType_IsSubtype(type, &PyFloat_Type)) {
        value = CxValue::fromFloat(float(PyFloat_AsDouble(object)));
    } else if (flags & Py_TPFLAGS_UNICODE_SUBCLASS) {
        value = CxValue::fromString(toQString(object));
    } else {
        PyErr_SetString(PyExc_Exception, "Unsupported camera parameter value type.");
        return false;
    }
    return true;
}

// ---- workers ----

/// Writes a parameter. The status as a Python int; null with an error set for a value of a wrong type, and without one
/// when there is no camera.
PyObject* fx_pycam_set_parameter_helper(PyObject* self, const QString& name, PyObject* object)
{
    CxCameraParameters* parameters = fx_cam_parameters(self);
    if (!parameters)
        return nullptr;
    CxValue value;
    if (!fromPython(object, value))
        return nullptr;
    if (const CxCameraParam* param = parameters->findParam(name, false)) {
        const CxValue::ExType type = param->paramValue().type();
        if (type != CxValue::Empty)
            value = value.converted(type);
    }
    int status = 0;
    parameters->setParamDirect(name, value, &status, ExCommitRefreshGuiMode::CommitAndRefresh);
    return PyLong_FromLong(status);
}

/// A piece of the camera's description by its key, for names that no parameter has.
bool readDescription(const SxCameraInfo& info, const QString& key, CxValue& value)
{
    if (key == QLatin1String("device_sn"))
        value = CxValue::fromString(info.serialNumber);
    else if (key == QLatin1String("device_inst_path"))
        value = CxValue::fromString(info.instancePath);
    else if (key == QLatin1String("device_type"))
        value = CxValue::fromString(info.deviceType);
    else if (key == QLatin1String("device_name"))
        value = CxValue::fromString(info.deviceName);
    else if (key == QLatin1String("device_user_id"))
        value = CxValue::fromString(info.userId);
    else if (key == QLatin1String("device_model_id"))
        value = CxValue::fromInt(info.modelId);
    else
        return false;
    return true;
}

PyObject* notSupported()
{
    PyErr_SetString(PyExc_Exception, "Parameter not supported by the camera.");
    return nullptr;
}

/// Reads a parameter, or with a suffix one of its limits. Null with an error set when the camera does not have it, and
/// without one when there is no camera.
PyObject* fx_pycam_get_parameter_helper(PyObject* self, const QString& name)
{
    CxCameraParameters* parameters = fx_cam_parameters(self);
    if (!parameters)
        return nullptr;
    QString base = name;
    QString suffix;
    const qsizetype colon = name.indexOf(QLatin1Char(':'));
    if (colon >= 0) {
        const QString tail = name.mid(colon);
        if (tail == QLatin1String(":min") || tail == QLatin1String(":max") || tail == QLatin1String(":info") ||
            tail == QLatin1String(":inc")) {
            base = name.left(colon);
            if (tail != QLatin1String(":info"))
                suffix = tail;
        }
    }
    const CxCameraParam* param = parameters->findParam(base, false);
    if (!param) {
        CxValue value;
        if (readDescription(parameters->cameraInfo(), name, value) || parameters->getParamDirect(name, value, nullptr))
            return toPython(value);
        return notSupported();
    }
    if (param->notSupported)
        return notSupported();
    if (suffix == QLatin1String(":min"))
        return toPython(param->minimum);
    if (suffix == QLatin1String(":max"))
        return toPython(param->maximum);
    if (suffix == QLatin1String(":inc"))
        return toPython(param->increment);
    return toPython(param->paramValue());
}

// ---- the bound callable ----

/// Whether the interpreter looks after every call at what the function returned. From 3.11 on it does not in calls
/// that have run often.
bool interpreterChecksResults()
{
    static const bool checks = std::atoi(Py_GetVersion() + 2) < 11; // behind "3."
    return checks;
}

/// Puts a SystemError in the place of the pending error, which becomes its cause: what the interpreter does by itself
/// where it looks at a result that comes with a pending error.
void raiseSystemErrorFromPending()
{
    PyObject* type = nullptr;
    PyObject* cause = nullptr;
    PyObject* traceback = nullptr;
    PyErr_Fetch(&type, &cause, &traceback);
    PyErr_NormalizeException(&type, &cause, &traceback);
    if (traceback)
        PyException_SetTraceback(cause, traceback);
    Py_XDECREF(traceback);
    Py_XDECREF(type);

    PyErr_SetString(PyExc_SystemError, "camera parameter access returned a result with an exception set");
    PyObject* error = nullptr;
    PyErr_Fetch(&type, &error, &traceback);
    PyErr_NormalizeException(&type, &error, &traceback);
    Py_XINCREF(cause);
    PyException_SetCause(error, cause); // takes the reference
    PyException_SetContext(error, cause);
    PyErr_Restore(type, error, traceback);
}

/// carrier: a tuple of the camera object and the attribute name. The look-up has handed a reference to it over to the
/// call, which releases it: a callable is for one call.
PyObject* fx_pycam_setget_camera_parameter(PyObject* carrier, PyObject* argument)
{
    if (!carrier || !(PyType_GetFlags(Py_TYPE(carrier)) & Py_TPFLAGS_TUPLE_SUBCLASS))
        return PyRef::retain(Py_None).release();
    PyObject* result = nullptr;
    {
        const PyRef handedOver = PyRef::take(carrier);
        PyObject* self = PyTuple_GetItem(carrier, 0);
        PyObject* text = PyTuple_GetItem(carrier, 1);
        if (!self || !isText(text)) {
            PyErr_Clear();
            return PyRef::retain(Py_None).release();
        }
        // A copy: reading and writing run host code, which may come back here.
        const AttributeName name = parsed(text);
        switch (name.action) {
        case AttributeName::Action::Read:
            result = fx_pycam_get_parameter_helper(self, name.target);
            break;
        case AttributeName::Action::Enable:
            result = fx_pycam_set_parameter_helper(self, name.target, Py_True);
            break;
        case AttributeName::Action::Disable:
            result = fx_pycam_set_parameter_helper(self, name.target, Py_False);
            break;
        case AttributeName::Action::Set:
            result = fx_pycam_set_parameter_helper(self, name.target, argument);
            break;
        case AttributeName::Action::None:
            break;
        }
    }
    if (result)
        return result;
    if (PyErr_Occurred() && !interpreterChecksResults()) {
        raiseSystemErrorFromPending();
        return nullptr;
    }
    return PyRef::retain(Py_None).release();
}

} // namespace

// ---- look-up ----

bool fx_cam_prepareAttributes()
{
    parsedNames.clear();
    knownNames = PyDict_New();
    return knownNames != nullptr;
}

PyObject* fx_pycam_GetAttrO(PyObject* self, PyObject* text)
{
    const AttributeName& name = parsed(text);
    if (name.action == AttributeName::Action::None || !g_pScriptPlugin ||
        !g_pScriptPlugin->isCameraParameter(name.parameter))
        return PyObject_GenericGetAttr(self, text);
    PyMethodDef* method = &px_cam_param_getter;
    if (name.action == AttributeName::Action::Set)
        method = &px_cam_param_setter;
    else if (name.action != AttributeName::Action::Read)
        method = &px_cam_param_setter_bool;

    PyRef carrier = PyRef::take(PyTuple_Pack(2, self, text));
    if (!carrier)
        return nullptr;
    PyObject* callable = PyCFunction_NewEx(method, carrier.get(), nullptr);
    if (callable)
        static_cast<void>(carrier.release()); // handed over to the call
    return callable;
}

// ---- access by text ----

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

// ---- tables ----

PyMethodDef px_cam_param_setter = {"paramsetter", guarded<fx_pycam_setget_camera_parameter>, METH_O, nullptr};
PyMethodDef px_cam_param_setter_bool = {"paramsetter_bool", guarded<fx_pycam_setget_camera_parameter>, METH_NOARGS,
                                        nullptr};
PyMethodDef px_cam_param_getter = {"paramgetter", guarded<fx_pycam_setget_camera_parameter>, METH_NOARGS, nullptr};
