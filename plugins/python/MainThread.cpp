#include "MainThread.h"

#include "support/PyRef.h"

void fx_takeOverMainThread()
{
    const PyRef name = PyRef::take(PyUnicode_FromString("threading"));
    const PyRef threading = name ? PyRef::take(PyImport_GetModule(name.get())) : PyRef();
    if (threading) {
        const PyRef main = PyRef::take(PyObject_GetAttrString(threading.get(), "_main_thread"));
        const PyRef ident = PyRef::take(PyObject_CallMethod(threading.get(), "get_ident", nullptr));
        if (main && ident)
            PyObject_SetAttrString(main.get(), "_ident", ident.get());
    }
    PyErr_Clear(); // a script may have put anything in the module's place
}
