// The names in __main__: listing them, and deleting those that a run added.

#include "CxPythonScriptPlugin.h"
#include "support/Convert.h"
#include "support/InterpreterThread.h"
#include "support/NativeGuard.h"
#include "support/PyRef.h"

#include <QtCore/QLoggingCategory>

#include <new>
#include <string_view>
#include <utility>

namespace {

/// Clears the pending error. Throws bad_alloc for a MemoryError, so that a lack of memory does not look like a missing
/// name.
void clearError()
{
    const bool outOfMemory = PyErr_ExceptionMatches(PyExc_MemoryError);
    PyErr_Clear();
    if (outOfMemory)
        throw std::bad_alloc();
}

/// The dictionary of __main__, borrowed. Null if there is none.
PyObject* mainDictionary()
{
    PyObject* main = PyImport_AddModule("__main__");
    if (!main)
        clearError();
    return main ? PyModule_GetDict(main) : nullptr;
}

std::string_view view(PyObject* bytes)
{
    return {PyBytes_AsString(bytes), std::size_t(PyBytes_Size(bytes))};
}

/// Calls function with the UTF-8 form of every text key, in the order of the dictionary.
template<typename Function>
void forEachName(PyObject* dictionary, Function function)
{
    const PyRef keys = PyRef::take(PyDict_Keys(dictionary));
    if (!keys)
        clearError();
    const Py_ssize_t count = keys ? PyList_Size(keys.get()) : 0;
    for (Py_ssize_t i = 0; i < count; ++i) {
        PyObject* key = PyList_GetItem(keys.get(), i);
        if (!fx_isText(key))
            continue;
        if (const PyRef bytes = PyRef::take(PyUnicode_AsUTF8String(key)))
            function(view(bytes.get()));
        else
            clearError();
    }
}

} // namespace

std::list<std::string> CxPythonScriptPlugin::listLocalVariables()
{
    const InterpreterThread thread;
    std::list<std::string> names;
    if (PyObject* dictionary = mainDictionary())
        forEachName(dictionary, [&names](std::string_view name) { names.emplace_back(name); });
    return names;
}

void CxPythonScriptPlugin::deleteNewLocalVariables(const std::list<std::string>& before)
{
    const InterpreterThread thread;
    PyObject* dictionary = mainDictionary();
    if (!dictionary)
        return;
    std::list<std::string> added;
    // A dictionary keeps its order, so the older names mostly come in their previous order. Each search starts behind
    // the last match and goes around the list once.
    auto expected = before.begin();
    const auto known = [&before, &expected](std::string_view name) {
        for (std::size_t i = 0; i < before.size(); ++i) {
            if (expected == before.end())
                expected = before.begin();
            if (name == *expected++)
                return true;
        }
        return false;
    };
    forEachName(dictionary, [&added, &known](std::string_view name) {
        if (!known(name))
            added.emplace_back(name);
    });
    for (const std::string& name : added) {
        if (PyObject_DelItemString(dictionary, name.c_str()) != 0)
            PyErr_Clear();
        fx_rethrowNativeException(); // from a finaliser; the remaining names stay
    }
}

void CxPythonScriptPlugin::dumpLocalVariables()
{
    const InterpreterThread thread;
    PyObject* dictionary = mainDictionary();
    if (!dictionary)
        return;
    const PyRef keys = PyRef::take(PyDict_Keys(dictionary));
    const Py_ssize_t count = keys ? PyList_Size(keys.get()) : 0;
    for (Py_ssize_t i = 0; i < count; ++i) {
        PyObject* key = PyList_GetItem(keys.get(), i);
        // Held, because PyObject_Str() runs code that may delete the name.
        const PyRef value = PyRef::retain(PyDict_GetItem(dictionary, key));
        const PyRef keyText = PyRef::take(PyObject_Str(key));
        const PyRef valueText = value ? PyRef::take(PyObject_Str(value.get())) : PyRef();
        PyErr_Clear();
        if (keyText && fx_isText(keyText.get()) && valueText && fx_isText(valueText.get()))
            QMessageLogger(nullptr, 0, nullptr).critical() << QStringLiteral("%1: %2").arg(
                fx_textOf(keyText.get()).value_or(QString()), fx_textOf(valueText.get()).value_or(QString()));
    }
    fx_forgetNativeException();
}
