#include "Convert.h"

#include "ErrorLog.h"
#include "InterpreterSymbols.h"
#include "PyRef.h"

namespace {

constexpr int stableAbiVersion = 3; // of the module interface under the limited API

} // namespace

std::optional<QString> fx_textOf(PyObject* object)
{
    if (!fx_isText(object))
        return std::nullopt;
    const PyRef utf8 = PyRef::take(PyUnicode_AsUTF8String(object));
    if (!utf8) {
        PyErr_Clear();
        return std::nullopt;
    }
    return QString::fromUtf8(PyBytes_AsString(utf8.get()), qsizetype(PyBytes_Size(utf8.get())));
}

PyObject* fx_none()
{
    return PyRef::retain(Py_None).release();
}

PyObject* fx_bool(bool value)
{
    return PyBool_FromLong(value);
}

PyObject* fx_text(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    return PyUnicode_FromStringAndSize(utf8.constData(), utf8.size());
}

PyObject* fx_raise(const char* text)
{
    PyErr_SetString(PyExc_Exception, text);
    return nullptr;
}

PyObject* fx_makeModule(PyModuleDef& definition)
{
    // If a script has imported the module twice, m_copy points at a dictionary of the old interpreter after a restart.
    definition.m_base.m_copy = nullptr;
    return PyModule_Create2(&definition, stableAbiVersion);
}

bool fx_addBuiltinModule(const char* name, PyObject* (*init)())
{
    if (fx_hasThreadStatePerThread() && Py_IsInitialized())
        return true;
    return PyImport_AppendInittab(name, init) == 0;
}

PyTypeObject* fx_makeType(PyType_Spec& specification, const char* format, const char* problem, const char* file,
                          int line)
{
    PyObject* type = PyType_FromSpec(&specification);
    if (!type)
        fx_logError(QString::fromLatin1(format).arg(QString::fromLatin1(problem)), file, line);
    return reinterpret_cast<PyTypeObject*>(type);
}

int fx_addType(PyObject* module, const char* name, PyTypeObject* type)
{
    if (!type)
        return 0;
    PyRef added = PyRef::retain(reinterpret_cast<PyObject*>(type));
    if (PyModule_AddObject(module, name, added.get()) != 0) {
        PyErr_Clear();
        return 0;
    }
    static_cast<void>(added.release());
    return 1;
}
