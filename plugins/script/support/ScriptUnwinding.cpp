// A pending error alone does not end a script: `except:`, `finally:` or an `__exit__` may swallow the error and
// continue, even for ever. A trace function can raise the error again at each line and call, and so unwinds one block
// after another. The interpreter removes a trace function set with sys.settrace() as soon as the function raises, but
// keeps one set with PyEval_SetTrace(). PyEval_SetTrace() is not in the limited API but is the same in every version,
// so it is looked up by name. Where it is missing, each guarded function still refuses calls.

#include "ScriptUnwinding.h"

#include "InterpreterSymbols.h"
#include "NativeGuard.h"
#include "PyRef.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace {

// The interpreter's event numbers. Its headers do not define them for the limited API.
enum Event : int { Call = 0, Exception = 1, Line = 2, Opcode = 7 };

using TraceFunction = int (*)(PyObject*, PyObject*, int, PyObject*);
using SetTrace = void(TraceFunction, PyObject*);

thread_local bool unwinding = false;

/// Where this thread's latest error arose. The frame is not owned; it is only compared.
struct Origin {
    PyObject* frame = nullptr;
    long line = 0;
};
thread_local Origin origin;

// How many exits of `with` statements may still run on this thread. The start value is larger than any real nesting.
// A limit is needed because generated code with all its statements on one line looks like an exit on each pass of a
// loop.
constexpr int mostExits = 1000;
thread_local int exitsLeft = 0;

SetTrace* setTrace()
{
    static SetTrace* const function = fx_findInterpreterFunction<SetTrace>("PyEval_SetTrace");
    return function;
}

/// A function of `sys`, borrowed. Null if a script has replaced it.
PyObject* sysFunction(const char* name)
{
    PyObject* function = PySys_GetObject(name);
    return function && Py_TYPE(function) == &PyCFunction_Type ? function : nullptr;
}

/// The trace function that the script set with sys.settrace(). While raiseAgain() is set, the interpreter keeps the
/// script's function as the argument of raiseAgain().
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

/// Whether later runs or other threads wait for the frame's code: for the lock of a module under import, the end of a
/// thread or the result of its work. Such code swallows no error and ends by itself.
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

/// Whether the frame is about to call the `__exit__` of a `with` statement after an error. Before 3.11 this call
/// belongs to the last line of the statement, and 3.9 may report that line. 3.11 and newer report no line there.
bool isAtExitCall(PyObject* frame)
{
    if (fx_interpreterVersion() != 0) // 3.11 or newer
        return false;
    constexpr unsigned char withCleanupStart = 81; // the instruction in 3.8
    constexpr unsigned char withExceptStart = 49;  // and in 3.9 and 3.10
    const PyRef code = PyRef::take(PyObject_GetAttrString(frame, "f_code"));
    const PyRef instructions = code ? PyRef::take(PyObject_GetAttrString(code.get(), "co_code")) : PyRef();
    const PyRef reached = PyRef::take(PyObject_GetAttrString(frame, "f_lasti"));
    const long position = reached ? PyLong_AsLong(reached.get()) : -1;
    char* bytes = nullptr;
    Py_ssize_t size = 0;
    if (instructions)
        PyBytes_AsStringAndSize(instructions.get(), &bytes, &size);
    PyErr_Clear();
    if (position < 0 || position >= size)
        return false;
    const auto instruction = static_cast<unsigned char>(bytes[position]);
    return instruction == withCleanupStart || instruction == withExceptStart;
}

/// Whether the event leads from an error to the `__exit__` of a `with` statement, which must run to free its lock or
/// file. Handlers and `finally` blocks stand below the line that failed; a `with` statement does not.
bool leadsToExit(PyObject* frame, int event)
{
    if (event != Line || frame != origin.frame)
        return false;
    const long line = lineOf(frame);
    if ((line > origin.line && !isAtExitCall(frame)) || exitsLeft-- <= 0)
        return false;
    origin.line = line; // the error propagates from here to the enclosing statement
    return true;
}

int raiseAgain(PyObject* /*scriptsTracing*/, PyObject* frame, int event, PyObject* /*detail*/)
{
    if (!fx_isNativeExceptionKept()) {
        fx_endUnwinding(); // this thread continued after the run
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
    // Keeps the script's function alive: PyEval_SetTrace() releases the old argument.
    const PyRef tracing = scriptsTracing();
    setTrace()(nullptr, nullptr);
    if (PyObject* set = tracing ? sysFunction("settrace") : nullptr)
        PyRef::take(PyObject_CallFunctionObjArgs(set, tracing.get(), nullptr));
    PyErr_Clear();
}
