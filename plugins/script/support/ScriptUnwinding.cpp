// A pending error alone does not end a script: `except:`, `finally:` or an `__exit__` may swallow it and go on, even
// for ever. A function that traces the thread can raise it again at each line and call, which takes one block after the
// other off the stack. One set with sys.settrace() is no help: the interpreter removes it as soon as it raises. The one
// that PyEval_SetTrace() sets stays. That call is outside the limited API but has been the same in every version, so it
// is looked up by name. Where it is missing, the entry of each guarded function still refuses.

#include "ScriptUnwinding.h"

#include "NativeGuard.h"
#include "PyRef.h"

#include <QtCore/qglobal.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#if defined(Q_OS_UNIX)
#include <dlfcn.h>
#endif

namespace {

// The interpreter's numbers of the events; its headers name them outside the limited API only.
enum Event : int { Call = 0, Exception = 1, Line = 2, Opcode = 7 };

using TraceFunction = int (*)(PyObject*, PyObject*, int, PyObject*);
using SetTrace = void (*)(TraceFunction, PyObject*);

thread_local bool unwinding = false;

/// Where this thread's latest error arose. The frame is for comparing only.
struct Origin {
    PyObject* frame = nullptr;
    long line = 0;
};
thread_local Origin origin;

// The exits of `with` statements that are still let through on this thread. More than any script nests: code that was
// generated with all its lines in one looks like an exit each time around a loop.
constexpr int mostExits = 1000;
thread_local int exitsLeft = 0;

SetTrace findSetTrace()
{
#if defined(Q_OS_UNIX)
    Dl_info library = {};
    if (dladdr(reinterpret_cast<const void*>(&Py_Initialize), &library) == 0)
        return nullptr;
    // A program that contains the interpreter has the symbols itself.
    void* handle = dlopen(library.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
    return reinterpret_cast<SetTrace>(dlsym(handle ? handle : RTLD_DEFAULT, "PyEval_SetTrace"));
#else
    return nullptr;
#endif
}

SetTrace setTrace()
{
    static const SetTrace function = findSetTrace();
    return function;
}

/// A function of `sys`, borrowed; null when a script has put something of its own in its place.
PyObject* sysFunction(const char* name)
{
    PyObject* function = PySys_GetObject(name);
    return function && Py_TYPE(function) == &PyCFunction_Type ? function : nullptr;
}

/// What the script had set with sys.settrace(): while this file's function is set, it is kept as that one's argument.
PyRef scriptsTracing()
{
    PyObject* get = sysFunction("gettrace");
    PyRef found = get ? PyRef::take(PyObject_CallObject(get, nullptr)) : PyRef();
    PyErr_Clear();
    return found.get() == Py_None ? PyRef() : std::move(found);
}

long lineOf(PyObject* frame)
{
    const PyRef number = PyRef::take(PyObject_GetAttrString(frame, "f_lineno"));
    const long line = number ? PyLong_AsLong(number.get()) : 0;
    PyErr_Clear();
    return line;
}

/// Whether later runs and other threads wait for what the frame's code frees: the module under import, or the end of a
/// thread and the result of its work. It swallows nothing and ends by itself.
bool mustComplete(PyObject* frame)
{
    constexpr std::array<std::string_view, 3> files = {"<frozen importlib", "/threading.py", "/concurrent/futures/"};
    const PyRef code = PyRef::take(PyObject_GetAttrString(frame, "f_code"));
    const PyRef name = code ? PyRef::take(PyObject_GetAttrString(code.get(), "co_filename")) : PyRef();
    const PyRef bytes = name ? PyRef::take(PyUnicode_AsUTF8String(name.get())) : PyRef();
    PyErr_Clear();
    if (!bytes)
        return false;
    const std::string_view file = PyBytes_AsString(bytes.get());
    return std::any_of(files.begin(), files.end(),
                       [file](std::string_view part) { return file.find(part) != std::string_view::npos; });
}

/// Whether the event is the way from an error to the `__exit__` of a `with` statement, so that a lock or a file that it
/// holds is freed. Handlers and `finally` blocks stand below the line that failed, the statement does not.
bool leadsToExit(PyObject* frame, int event)
{
    if (event != Line || frame != origin.frame)
        return false;
    const long line = lineOf(frame);
    if (line > origin.line || exitsLeft-- <= 0)
        return false;
    origin.line = line; // the error goes on from here to the next statement around it
    return true;
}

int raiseAgain(PyObject* /*scriptsTracing*/, PyObject* frame, int event, PyObject* /*detail*/)
{
    if (!fx_isNativeExceptionKept()) {
        fx_endUnwinding(); // of a thread that went on after the run
        return 0;
    }
    if (event == Exception)
        origin = {frame, lineOf(frame)};
    if ((event != Call && event != Line && event != Opcode) || mustComplete(frame) || leadsToExit(frame, event))
        return 0;
    fx_raiseNativeException();
    return -1;
}

int beginHere(void* /*unused*/)
{
    if (fx_isNativeExceptionKept())
        fx_beginUnwinding();
    return 0;
}

} // namespace

void fx_beginUnwinding() noexcept
{
    if (!setTrace())
        return;
    const PyRef tracing = scriptsTracing();
    origin = {};
    if (!std::exchange(unwinding, true))
        exitsLeft = mostExits;
    setTrace()(raiseAgain, tracing.get());
    PyErr_Clear();
}

void fx_beginUnwindingOnMainThread() noexcept
{
    Py_AddPendingCall(beginHere, nullptr);
}

void fx_endUnwinding() noexcept
{
    if (!std::exchange(unwinding, false) || !Py_IsInitialized())
        return;
    // Held by this: setting the next function releases it.
    const PyRef tracing = scriptsTracing();
    setTrace()(nullptr, nullptr);
    if (PyObject* set = tracing ? sysFunction("settrace") : nullptr)
        PyRef::take(PyObject_CallFunctionObjArgs(set, tracing.get(), nullptr));
    PyErr_Clear();
}
