#pragma once

#include "PythonApi.h"

#include <QtCore/QString>

#include <optional>

// Conversion between Python objects and the types of the host, and the errors that the module raises.

// ---- type checks; subclasses count ----

inline bool fx_hasTypeFlag(PyObject* object, unsigned long flag)
{
    return (PyType_GetFlags(Py_TYPE(object)) & flag) != 0;
}

// Reading the flags of a type takes a call, so the most common types are compared first.

/// True and False count as integers.
inline bool fx_isInteger(PyObject* object)
{
    return Py_TYPE(object) == &PyLong_Type || fx_hasTypeFlag(object, Py_TPFLAGS_LONG_SUBCLASS);
}

inline bool fx_isFloat(PyObject* object)
{
    return Py_TYPE(object) == &PyFloat_Type || PyType_IsSubtype(Py_TYPE(object), &PyFloat_Type);
}

inline bool fx_isText(PyObject* object)
{
    return Py_TYPE(object) == &PyUnicode_Type || fx_hasTypeFlag(object, Py_TPFLAGS_UNICODE_SUBCLASS);
}

inline bool fx_isList(PyObject* object)
{
    return Py_TYPE(object) == &PyList_Type || fx_hasTypeFlag(object, Py_TPFLAGS_LIST_SUBCLASS);
}

inline bool fx_isTuple(PyObject* object)
{
    return fx_hasTypeFlag(object, Py_TPFLAGS_TUPLE_SUBCLASS);
}

inline bool fx_isDict(PyObject* object)
{
    return fx_hasTypeFlag(object, Py_TPFLAGS_DICT_SUBCLASS);
}

/// The instance record behind an object of the module's own types.
template<typename Record>
Record& fx_record(PyObject* object)
{
    return *reinterpret_cast<Record*>(object);
}

// ---- from Python ----

/// The text of a str. Empty for other objects and for a str that has no UTF-8 form. Leaves no error.
std::optional<QString> fx_textOf(PyObject* object);

// ---- to Python: new references; null with an error set if memory runs out ----

PyObject* fx_none();
PyObject* fx_bool(bool value);
PyObject* fx_text(const QString& text);

// ---- errors ----

/// Sets an Exception with this text. Returns null.
PyObject* fx_raise(const char* text);

// ---- modules and types ----

/// Makes a module from its static definition. Returns a new reference, or null with an error set. The same definition
/// may be used again after the interpreter has been finalised and restarted.
PyObject* fx_makeModule(PyModuleDef& definition);

/// Adds a module to the interpreter's table of built-in modules. Returns whether it is there. From 3.12 on does nothing
/// while the interpreter lives: it was added before the start.
bool fx_addBuiltinModule(const char* name, PyObject* (*init)());

/// Makes a type from its specification. On failure logs format with problem in the place of %1, and returns null with
/// the interpreter's error still set. The log line names the caller's file and line.
PyTypeObject* fx_makeType(PyType_Spec& specification, const char* format, const char* problem,
                          const char* file = __builtin_FILE(), int line = __builtin_LINE());

/// Adds a type to a module under a name. Returns 1 on success, and 0 if the type is null or adding fails. Leaves no
/// error.
int fx_addType(PyObject* module, const char* name, PyTypeObject* type);
