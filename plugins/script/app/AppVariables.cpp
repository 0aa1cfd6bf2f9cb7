// Values that scripts share.

#include "AppFunctions.h"
#include "GlobalVariables.h"
#include "ScriptModule.h"

PyObject* fx_pyapp_SetGlobalVariableImg(PyObject* /*module*/, PyObject* args)
{
    const char* name = nullptr;
    PyObject* object = nullptr;
    if (!PyArg_ParseTuple(args, "sO", &name, &object))
        return nullptr;
    fx_vars_setImage(QString::fromUtf8(name), fx_pyimg_getImageObjectData(object));
    return fx_none();
}

PyObject* fx_pyapp_GetGlobalVariableImg(PyObject* /*module*/, PyObject* args)
{
    const char* name = nullptr;
    if (!PyArg_ParseTuple(args, "s", &name))
        return nullptr;
    // Wrapped under the store's lock, so that no other thread deletes the image meanwhile. That is safe: the garbage
    // collector does not track image objects, so creating one does not start the collector or run a script's code.
    PyObject* result = nullptr;
    fx_vars_readImage(QString::fromUtf8(name), [&result](CxImageData* image) {
        result = image ? fx_pyimg_createNewImageObject(image, false) : fx_none();
    });
    return result;
}

PyObject* fx_pyapp_SetGlobalVariableInt(PyObject* /*module*/, PyObject* args)
{
    const char* name = nullptr;
    int value = 0;
    if (!PyArg_ParseTuple(args, "si", &name, &value))
        return nullptr;
    fx_vars_setInt(QString::fromUtf8(name), value);
    return fx_none();
}

PyObject* fx_pyapp_GetGlobalVariableInt(PyObject* /*module*/, PyObject* args)
{
    const char* name = nullptr;
    if (!PyArg_ParseTuple(args, "s", &name))
        return nullptr;
    PyObject* result = nullptr;
    fx_vars_readInt(QString::fromUtf8(name), [&result](int value) { result = PyLong_FromLong(value); });
    return result;
}

PyObject* fx_pyapp_SetGlobalVariableString(PyObject* /*module*/, PyObject* args)
{
    const char* name = nullptr;
    const char* value = nullptr;
    if (!PyArg_ParseTuple(args, "ss", &name, &value))
        return nullptr;
    fx_vars_setString(QString::fromUtf8(name), QString::fromUtf8(value));
    return fx_none();
}

PyObject* fx_pyapp_GetGlobalVariableString(PyObject* /*module*/, PyObject* args)
{
    const char* name = nullptr;
    if (!PyArg_ParseTuple(args, "s", &name))
        return nullptr;
    PyObject* result = nullptr;
    fx_vars_readString(QString::fromUtf8(name), [&result](const QString& value) { result = fx_text(value); });
    return result;
}
