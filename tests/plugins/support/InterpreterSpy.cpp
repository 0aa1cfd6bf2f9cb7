#include "InterpreterSpy.h"

#include "support/PythonApi.h"

#include <dlfcn.h>

#include <stdexcept>

// Symbols of the program come before those of the libraries that it is linked with.

namespace {

template<typename Function>
Function* real(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

void note(const QString& call)
{
    InterpreterSpy::calls.append(call);
}

/// Fails as the interpreter does, with an error set, for the name that is to be refused.
bool refuses(const char* constant)
{
    if (InterpreterSpy::refusedConstant != constant)
        return false;
    PyErr_NoMemory();
    return true;
}

} // namespace

void InterpreterSpy::reset()
{
    calls.clear();
    version.reset();
    versionIsNull = false;
    home.reset();
    finalizeThrows = false;
    refusedModule.clear();
    refusedConstant.clear();
}

extern "C" {

const char* Py_GetVersion()
{
    if (InterpreterSpy::versionIsNull)
        return nullptr;
    if (InterpreterSpy::version)
        return InterpreterSpy::version->constData();
    return real<const char*()>("Py_GetVersion")();
}

void Py_SetProgramName(const wchar_t* name)
{
    note(QStringLiteral("Py_SetProgramName(%1)").arg(QString::fromWCharArray(name)));
    real<void(const wchar_t*)>("Py_SetProgramName")(name);
}

void Py_SetPythonHome(const wchar_t* home)
{
    note(QStringLiteral("Py_SetPythonHome(%1)").arg(QString::fromWCharArray(home)));
    real<void(const wchar_t*)>("Py_SetPythonHome")(InterpreterSpy::home ? InterpreterSpy::home->c_str() : home);
}

int PyImport_AppendInittab(const char* name, PyObject* (*init)())
{
    note(QStringLiteral("PyImport_AppendInittab(%1)").arg(QString::fromUtf8(name)));
    if (InterpreterSpy::refusedModule == name)
        return -1;
    return real<int(const char*, PyObject* (*)())>("PyImport_AppendInittab")(name, init);
}

void Py_Initialize()
{
    note(QStringLiteral("Py_Initialize()"));
    InterpreterSpy::everStarted = true;
    real<void()>("Py_Initialize")();
}

void Py_Finalize()
{
    note(QStringLiteral("Py_Finalize()"));
    real<void()>("Py_Finalize")();
    if (InterpreterSpy::finalizeThrows)
        throw std::runtime_error("finalize");
}

int PyModule_AddStringConstant(PyObject* module, const char* name, const char* value)
{
    note(QStringLiteral("PyModule_AddStringConstant(%1, %2)").arg(QString::fromUtf8(name), QString::fromUtf8(value)));
    return refuses(name)
               ? -1
               : real<int(PyObject*, const char*, const char*)>("PyModule_AddStringConstant")(module, name, value);
}

int PyModule_AddIntConstant(PyObject* module, const char* name, long value)
{
    note(QStringLiteral("PyModule_AddIntConstant(%1, %2)").arg(QString::fromUtf8(name)).arg(value));
    return refuses(name) ? -1 : real<int(PyObject*, const char*, long)>("PyModule_AddIntConstant")(module, name, value);
}

PyObject* PyImport_ImportModule(const char* name)
{
    note(QStringLiteral("PyImport_ImportModule(%1)").arg(QString::fromUtf8(name)));
    return real<PyObject*(const char*)>("PyImport_ImportModule")(name);
}

PyObject* PyModule_Create2(PyModuleDef* definition, int version)
{
    // The interpreter's own modules are not of interest.
    if (qstrcmp(definition->m_name, "vantrel") == 0)
        note(QStringLiteral("PyModule_Create2(vantrel, %1)").arg(version));
    return real<PyObject*(PyModuleDef*, int)>("PyModule_Create2")(definition, version);
}

PyObject* Py_CompileString(const char* text, const char* file, int start)
{
    note(QStringLiteral("Py_CompileString(%1, %2, %3)")
             .arg(QString::fromUtf8(text), QString::fromUtf8(file))
             .arg(start));
    return real<PyObject*(const char*, const char*, int)>("Py_CompileString")(text, file, start);
}

} // extern "C"
