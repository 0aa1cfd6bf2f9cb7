// Camera attributes for parameters: cam.get_level(), cam.set_level(10), cam.enable_flag(), cam.get_level_maximum().
// The look-up returns a callable that is bound to the camera and the attribute's name.

#include "CameraNames.h"
#include "CameraObject.h"
#include "IxScriptEnvironment.h"
#include "support/HostContext.h"
#include "support/NativeGuard.h"
#include "support/PyRef.h"

#include <QtCore/QString>

#include <cstdlib>
#include <deque>

namespace {

using Action = CameraAttributeName::Action;

// ---- names ----

// Scripts use the same few names again and again, so parsed names are kept: parsing a name at each access would make
// the access take four times as long. The dictionary maps names to indices in parsedNames and belongs to the running
// interpreter.
PyObject* knownNames = nullptr;
std::deque<CameraAttributeName> parsedNames;
constexpr std::size_t mostKnownNames = 1000;

CameraAttributeName unkept; ///< the latest name that was not kept

/// The meaning of an attribute name. Where the result is `unkept`, it is valid until the next call.
const CameraAttributeName& parsed(PyObject* name)
{
    const bool plain = Py_TYPE(name) == &PyUnicode_Type;
    if (plain) {
        if (PyObject* index = PyDict_GetItem(knownNames, name))
            return parsedNames[PyLong_AsSize_t(index)];
    }
    CameraAttributeName fresh = fx_cam_parseAttributeName(fx_textOf(name).value_or(QString()));
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

// ---- the bound callable ----

/// Whether the interpreter checks the result of every call. From 3.11 on, the interpreter skips the check for calls
/// that have run often.
bool interpreterChecksResults()
{
    static const bool checks = std::atoi(Py_GetVersion() + 2) < 11; // after "3."
    return checks;
}

/// Replaces the pending error with a SystemError, whose cause is the pending error. The interpreter does the same when
/// it checks a result and finds a pending error.
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

/// Reads or writes the parameter of a bound callable.
///
/// carrier  a tuple of the camera object and the attribute name. The look-up hands one reference to the tuple to this
///          call, which releases the reference. So a callable can be called only once.
PyObject* fx_pycam_setget_camera_parameter(PyObject* carrier, PyObject* argument)
{
    if (!carrier || !fx_isTuple(carrier))
        return fx_none();
    PyRef result;
    {
        const PyRef handedOver = PyRef::take(carrier);
        PyObject* self = PyTuple_GetItem(carrier, 0);
        PyObject* text = PyTuple_GetItem(carrier, 1);
        if (!self || !text || !fx_isText(text)) {
            PyErr_Clear();
            return fx_none();
        }
        // Reading and writing run host code, which may call this function again, so a name that is not kept is copied.
        const CameraAttributeName& found = parsed(text);
        const CameraAttributeName copy = &found == &unkept ? found : CameraAttributeName();
        const CameraAttributeName& name = &found == &unkept ? copy : found;
        switch (name.action) {
        case Action::Read:
            result = PyRef::take(fx_pycam_get_parameter_helper(self, name.target));
            break;
        case Action::Enable:
            result = PyRef::take(fx_pycam_set_parameter_helper(self, name.target, Py_True));
            break;
        case Action::Disable:
            result = PyRef::take(fx_pycam_set_parameter_helper(self, name.target, Py_False));
            break;
        case Action::Set:
            result = PyRef::take(fx_pycam_set_parameter_helper(self, name.target, argument));
            break;
        case Action::None:
            break;
        }
    }
    if (!interpreterChecksResults() && PyErr_Occurred()) {
        raiseSystemErrorFromPending();
        return nullptr;
    }
    return result ? result.release() : fx_none();
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
    const CameraAttributeName& name = parsed(text);
    if (name.action == Action::None || !g_pScriptPlugin || !g_pScriptPlugin->isCameraParameter(name.parameter))
        return PyObject_GenericGetAttr(self, text);
    PyMethodDef* method = &px_cam_param_getter;
    if (name.action == Action::Set)
        method = &px_cam_param_setter;
    else if (name.action != Action::Read)
        method = &px_cam_param_setter_bool;

    PyRef carrier = PyRef::take(PyTuple_Pack(2, self, text));
    if (!carrier)
        return nullptr;
    PyObject* callable = PyCFunction_NewEx(method, carrier.get(), nullptr);
    if (callable)
        static_cast<void>(carrier.release()); // handed over to the call
    return callable;
}

// ---- tables ----

PyMethodDef px_cam_param_setter = {"paramsetter", guarded<fx_pycam_setget_camera_parameter>, METH_O, nullptr};
PyMethodDef px_cam_param_setter_bool = {"paramsetter_bool", guarded<fx_pycam_setget_camera_parameter>, METH_NOARGS,
                                        nullptr};
PyMethodDef px_cam_param_getter = {"paramgetter", guarded<fx_pycam_setget_camera_parameter>, METH_NOARGS, nullptr};
