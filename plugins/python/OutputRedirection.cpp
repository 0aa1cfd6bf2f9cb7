#include "OutputRedirection.h"

#include "support/Convert.h"
#include "support/NativeGuard.h"
#include "support/PyRef.h"

#include <QtCore/QString>

#include <new>
#include <utility>

namespace {

/// Instance record of emb.stdout_object.
struct TxPyStdOut {
    PyObject_HEAD emb::Write fnWrite; ///< empty in a new instance
};

} // namespace

namespace emb {

extern PyModuleDef embmodule;
extern PyType_Spec TxPyStdOutType_Spec;

static PyObject* TxPyStdOutType = nullptr;
static PyObject* g_stdout = nullptr;
static PyObject* g_stdout_saved = nullptr; // owned while g_stdout is set: a script may drop every other reference
static PyObject* g_stderr = nullptr;
static PyObject* g_stderr_saved = nullptr; // likewise

} // namespace emb

PyObject* PyInit_emb()
{
    emb::g_stdout = nullptr;
    emb::g_stdout_saved = nullptr;
    emb::g_stderr = nullptr;
    emb::g_stderr_saved = nullptr;

    emb::TxPyStdOutType = reinterpret_cast<PyObject*>(
        fx_makeType(emb::TxPyStdOutType_Spec, "PyInit_emb(): %1", "Failed to register emb.StdOutType"));
    if (!emb::TxPyStdOutType)
        return nullptr;
    PyObject* module = fx_makeModule(emb::embmodule);
    if (!module)
        return nullptr;
    // Redirection works without this name, so a failure is ignored.
    fx_addType(module, "stdout_object", reinterpret_cast<PyTypeObject*>(emb::TxPyStdOutType));
    return module;
}

namespace emb {

// ---- the object ----

static PyObject* Stdout_new(PyTypeObject* type, PyObject* args, PyObject* keywords)
{
    PyObject* self = PyType_GenericNew(type, args, keywords);
    if (self)
        new (&fx_record<TxPyStdOut>(self).fnWrite) Write();
    return self;
}

static void Stdout_free(PyObject* self)
{
    PyTypeObject* type = Py_TYPE(self);
    const auto release = reinterpret_cast<freefunc>(PyType_GetSlot(type, Py_tp_free));
    fx_record<TxPyStdOut>(self).fnWrite.~Write();
    release(self);
    Py_DECREF(type); // instances of a heap type own a reference to it
}

static PyObject* Stdout_write(PyObject* self, PyObject* args)
{
    const Write& write = fx_record<TxPyStdOut>(self).fnWrite;
    if (!write)
        return PyLong_FromLong(0);
    const char* text = nullptr;
    if (!PyArg_ParseTuple(args, "s", &text))
        return nullptr;
    std::string bytes(text);
    const std::size_t length = bytes.size();
    write(std::move(bytes));
    return PyLong_FromSize_t(length); // bytes, not characters
}

static PyObject* Stdout_flush(PyObject* /*self*/, PyObject* /*args*/)
{
    return Py_BuildValue("");
}

// ---- installing the object ----

static void setStream(const char* name, PyObject* stream)
{
    if (PySys_SetObject(name, stream) != 0)
        PyErr_Clear();
}

static void install(const char* name, PyObject*& instance, PyObject*& saved, Write write)
{
    if (!TxPyStdOutType)
        return;
    if (!instance) {
        PyRef current = PyRef::retain(PySys_GetObject(name));
        instance = PyObject_CallObject(TxPyStdOutType, nullptr);
        saved = instance ? current.release() : nullptr;
        if (!instance)
            return PyErr_Clear(); // without the object the stream stays as it is
    }
    // The old function is destroyed last, when everything is in place: its destruction may run any code.
    std::swap(fx_record<TxPyStdOut>(instance).fnWrite, write);
    setStream(name, instance);
}

static void uninstall(const char* name, PyObject*& instance, PyObject* saved)
{
    if (saved)
        setStream(name, saved);
    if (PyObject* installed = std::exchange(instance, nullptr)) {
        Py_XDECREF(saved);
        Py_DECREF(installed);
    }
}

void set_stdout(Write write)
{
    install("stdout", g_stdout, g_stdout_saved, std::move(write));
}

void set_stderr(Write write)
{
    install("stderr", g_stderr, g_stderr_saved, std::move(write));
}

void reset_stdout()
{
    uninstall("stdout", g_stdout, g_stdout_saved);
}

void reset_stderr()
{
    uninstall("stderr", g_stderr, g_stderr_saved);
}

void release_saved_streams()
{
    if (g_stdout)
        Py_XDECREF(std::exchange(g_stdout_saved, nullptr));
    if (g_stderr)
        Py_XDECREF(std::exchange(g_stderr_saved, nullptr));
}

void clear_writers()
{
    for (PyObject* instance : {g_stdout, g_stderr}) {
        if (instance)
            fx_record<TxPyStdOut>(instance).fnWrite = nullptr;
    }
}

// ---- tables ----

static PyMethodDef Stdout_methods[] = {
    {"write", guarded<Stdout_write>, METH_VARARGS, "sys.stdout.write"},
    {"flush", guarded<Stdout_flush>, METH_VARARGS, "sys.stdout.flush"},
    {nullptr, nullptr, 0, nullptr},
};

static PyType_Slot TxPyStdOutType_Slots[] = {
    {Py_tp_methods, Stdout_methods},
    {Py_tp_new, guardedSlot<Stdout_new>()},
    {Py_tp_dealloc, guardedSlot<Stdout_free>()},
    {0, nullptr},
};

PyType_Spec TxPyStdOutType_Spec = {
    "emb.stdout_object",  // name
    sizeof(TxPyStdOut),   // basicsize
    0,                    // itemsize
    Py_TPFLAGS_DEFAULT,   // flags: cannot be subclassed
    TxPyStdOutType_Slots, // slots
};

PyModuleDef embmodule = {
    PyModuleDef_HEAD_INIT,
    "emb",   // m_name
    nullptr, // m_doc
    -1,      // m_size: the module keeps its state in process-wide variables
    nullptr, // m_methods
    nullptr, // m_slots
    nullptr, // m_traverse
    nullptr, // m_clear
    nullptr, // m_free
};

} // namespace emb
