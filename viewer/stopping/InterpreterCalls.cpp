// A pending error alone does not end a script that swallows errors in a loop. A trace function raises again at each
// line, and so takes one block after another off the stack. The interpreter keeps a trace function that was set with
// PyEval_SetTrace(), even if the function raises.

#include "InterpreterCalls.h"

#include "InterpreterSymbol.h"

#include <QtCore/QFile>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>

#include <dlfcn.h>

namespace {

using Object = void; ///< an object of the interpreter
using TraceFunction = int (*)(Object*, Object*, int, Object*);

// The interpreter's event numbers.
enum Event : int { Call = 0, Exception = 1, Line = 2, Return = 3, Opcode = 7 };

/// The functions that this file needs. Looked up at each use, which is rare: a script may start the interpreter later.
struct Interpreter {
    int (*isInitialized)() = interpreterFunction<int()>("Py_IsInitialized");
    void (*release)(Object*) = interpreterFunction<void(Object*)>("Py_DecRef");
    Object* (*attribute)(Object*,
                         const char*) = interpreterFunction<Object*(Object*, const char*)>("PyObject_GetAttrString");
    Object* (*call)(Object*, Object*) = interpreterFunction<Object*(Object*, Object*)>("PyObject_CallObject");
    void (*retain)(Object*) = interpreterFunction<void(Object*)>("Py_IncRef");
    void (*setObject)(Object*, Object*) = interpreterFunction<void(Object*, Object*)>("PyErr_SetObject");
    void (*clear)() = interpreterFunction<void()>("PyErr_Clear");
    int (*checkSignals)() = interpreterFunction<int()>("PyErr_CheckSignals");
    void (*setCause)(Object*, Object*) = interpreterFunction<void(Object*, Object*)>("PyException_SetCause");
    void (*setTrace)(TraceFunction, Object*) = interpreterFunction<void(TraceFunction, Object*)>("PyEval_SetTrace");
    // The name since 3.13, and the one before.
    Object* (*currentState)() = interpreterFunction<Object*()>("PyThreadState_GetUnchecked");
    Object* (*currentStateBefore313)() = interpreterFunction<Object*()>("_PyThreadState_UncheckedGet");
    int (*ensureState)() = interpreterFunction<int()>("PyGILState_Ensure");
    void (*releaseState)(int) = interpreterFunction<void(int)>("PyGILState_Release");
    long (*asLong)(Object*) = interpreterFunction<long(Object*)>("PyLong_AsLong");
    Object* (*asBytes)(Object*) = interpreterFunction<Object*(Object*)>("PyUnicode_AsUTF8String");
    const char* (*bytes)(Object*) = interpreterFunction<const char*(Object*)>("PyBytes_AsString");
    std::ptrdiff_t (*size)(Object*) = interpreterFunction<std::ptrdiff_t(Object*)>("PyBytes_Size");
    const char* (*version)() = interpreterFunction<const char*()>("Py_GetVersion");
    Object** interrupt = static_cast<Object**>(dlsym(RTLD_DEFAULT, "PyExc_KeyboardInterrupt"));
    Object* none = dlsym(RTLD_DEFAULT, "_Py_NoneStruct");

    bool isThere() const
    {
        return isInitialized && isInitialized() && release && attribute && call && retain && setObject && clear &&
               checkSignals && setCause && setTrace && asLong && asBytes && bytes && size && version && interrupt &&
               none && (currentState || currentStateBefore313) && ensureState && releaseState;
    }
};

const Interpreter& interpreter()
{
    static const Interpreter functions; // first used when the interpreter runs
    return functions;
}

bool isInterpreterThere()
{
    // The library may be loaded after the first question, so that is asked without remembering the answer.
    const auto isInitialized = interpreterFunction<int()>("Py_IsInitialized");
    return isInitialized && isInitialized() && interpreter().isThere();
}

/// Gives the calling thread a thread state while the object lives. From 3.12 on a thread has one only during a run.
class ThreadState
{
public:
    ThreadState()
    {
        const Interpreter& python = interpreter();
        if (!(python.currentState ? python.currentState() : python.currentStateBefore313()))
            m_ensured = python.ensureState();
    }
    ~ThreadState()
    {
        if (m_ensured)
            interpreter().releaseState(*m_ensured);
    }
    Q_DISABLE_COPY_MOVE(ThreadState)

private:
    std::optional<int> m_ensured;
};

/// The error of raiseAtEveryLine(). One object for all lines, so that its traceback tells no chain of errors.
Object* theError = nullptr;

/// Where the latest error arose. The frame is not owned; it is only compared.
struct Origin {
    Object* frame = nullptr;
    long line = 0;
};
Origin origin;

/// How many exits of `with` statements may still run: a loop with all its statements on one line looks like an exit.
int exitsLeft = 0;
constexpr int mostExits = 1000;

constexpr std::chrono::seconds finaliserPatience(1);

/// Until when finalisers and the start of a program may go on.
std::chrono::steady_clock::time_point deadline;

long numberOf(Object* frame, const char* attribute)
{
    const Interpreter& python = interpreter();
    Object* number = python.attribute(frame, attribute);
    const long value = number ? python.asLong(number) : -1;
    python.clear();
    python.release(number);
    return value;
}

long lineOf(Object* frame)
{
    return numberOf(frame, "f_lineno");
}

/// The name of a frame's function and the end of its file's name.
bool isFunction(Object* frame, std::string_view function, std::string_view file)
{
    const Interpreter& python = interpreter();
    Object* code = python.attribute(frame, "f_code");
    bool is = code != nullptr;
    for (const auto& [attribute, end] : {std::pair("co_name", function), std::pair("co_filename", file)}) {
        Object* name = is ? python.attribute(code, attribute) : nullptr;
        Object* text = name ? python.asBytes(name) : nullptr;
        is = text && std::string_view(python.bytes(text)).ends_with(end);
        python.release(text);
        python.release(name);
    }
    python.clear();
    python.release(code);
    return is;
}

template<std::size_t count>
bool isIn(Object* frame, const std::array<std::string_view, count>& files)
{
    const Interpreter& python = interpreter();
    Object* code = python.attribute(frame, "f_code");
    Object* name = code ? python.attribute(code, "co_filename") : nullptr;
    Object* text = name ? python.asBytes(name) : nullptr;
    python.clear();
    const std::string_view file = text ? python.bytes(text) : "";
    const bool found = std::any_of(files.begin(), files.end(),
                                   [file](std::string_view part) { return file.find(part) != std::string_view::npos; });
    for (Object* object : {code, name, text})
        python.release(object);
    return found;
}

/// Whether later runs or other threads wait for the frame's code, for example for the lock of a module under import.
/// Such code swallows no error and ends by itself.
bool mustComplete(Object* frame)
{
    return isIn(frame, std::array<std::string_view, 3>{"<frozen importlib", "/threading.py", "/concurrent/futures/"});
}

/// Whether the frame is one of the viewer's own, which stand below or above those of a script. The functions between two
/// scripts do not count: a stop has to pass them.
bool isOfViewer(Object* frame)
{
    return isIn(frame, std::array<std::string_view, 1>{"/vantrel_viewer/"}) &&
           !isFunction(frame, "", "/vantrel_viewer/nested.py");
}

/// Whether the frame is about to call the `__exit__` of a `with` statement after an error. Before 3.11 this call
/// belongs to the last line of the statement, and 3.9 may report that line. 3.11 and newer report no line there.
bool isAtExitCall(Object* frame)
{
    const Interpreter& python = interpreter();
    const std::string_view version = python.version(); // such as "3.8.18 (default, ..."
    const int minor = version.starts_with("3.") ? std::atoi(version.data() + 2) : 0;
    if (minor >= 11)
        return false;
    const unsigned char exitCall = minor == 8 ? 81 : 49; // WITH_CLEANUP_START, later WITH_EXCEPT_START
    Object* code = python.attribute(frame, "f_code");
    Object* instructions = code ? python.attribute(code, "co_code") : nullptr;
    const long position = numberOf(frame, "f_lasti");
    const bool is = instructions && position >= 0 && position < python.size(instructions) &&
                    static_cast<unsigned char>(python.bytes(instructions)[position]) == exitCall;
    python.clear();
    python.release(instructions);
    python.release(code);
    return is;
}

/// Whether the event leads from an error to the `__exit__` of a `with` statement, which must run to free its lock or
/// file. Handlers and `finally` blocks stand below the line that failed; a `with` statement does not.
bool leadsToExit(Object* frame, int event)
{
    if (event != Line || frame != origin.frame)
        return false;
    const long line = lineOf(frame);
    if ((line > origin.line && !isAtExitCall(frame)) || exitsLeft-- <= 0)
        return false;
    origin.line = line; // the error propagates from here to the enclosing statement
    return true;
}

/// Whether a frame may go on although the script is to end.
bool mayFinish(Object* frame)
{
    return isOfViewer(frame) ||
           (std::chrono::steady_clock::now() < deadline && InterpreterCalls::isDelicate(frame));
}

bool isOutermost(Object* frame)
{
    const Interpreter& python = interpreter();
    Object* back = python.attribute(frame, "f_back");
    const bool outermost = back && (back == python.none || isOfViewer(back));
    python.clear();
    python.release(back);
    return outermost;
}

void endTracing()
{
    const Interpreter& python = interpreter();
    python.setTrace(nullptr, nullptr);
    Object* error = theError;
    theError = nullptr;
    python.release(error);
}

int raiseAgain(Object* /*unused*/, Object* frame, int event, Object* /*detail*/)
{
    if (!theError) { // the script ended without its outermost frame
        interpreter().setTrace(nullptr, nullptr);
        return 0;
    }
    if (event == Exception)
        origin = {frame, lineOf(frame)};
    if (event == Return && isOutermost(frame)) {
        endTracing(); // what comes after the script, for example finalisers, works as usual
        return 0;
    }
    if ((event != Call && event != Line && event != Opcode) || mustComplete(frame) || mayFinish(frame) ||
        leadsToExit(frame, event))
        return 0;
    interpreter().setObject(*interpreter().interrupt, theError);
    return -1;
}

} // namespace

void InterpreterCalls::surviveSystemExit(const QString& plugin)
{
    // The library is loaded, but its names may not be visible everywhere before the interpreter starts.
    void* library = dlopen(QFile::encodeName(plugin).constData(), RTLD_LAZY | RTLD_NOLOAD);
    if (!library)
        return;
    if (auto* inspects = static_cast<int*>(dlsym(library, "Py_InspectFlag")))
        *inspects = 1;
    dlclose(library);
}

bool InterpreterCalls::isInScript(void* frame)
{
    return !isInterpreterThere() || (frame != interpreter().none && !isOfViewer(frame));
}

bool InterpreterCalls::isDelicate(void* frame)
{
    if (!isInterpreterThere())
        return false;
    const Interpreter& python = interpreter();
    constexpr int deepest = 20; // calls below the finaliser or the start of a program
    bool found = false;
    python.retain(frame);
    for (int i = 0; i < deepest && frame && frame != python.none && !found; ++i) {
        found = isFunction(frame, "__del__", "") || isFunction(frame, "__init__", "/subprocess.py") ||
                isFunction(frame, "_execute_child", "/subprocess.py");
        Object* back = python.attribute(frame, "f_back");
        python.release(frame);
        frame = back;
    }
    python.clear();
    python.release(frame);
    return found;
}

void InterpreterCalls::raiseKeyboardInterrupt()
{
    if (!isInterpreterThere())
        return;
    const Interpreter& python = interpreter();
    Object* error = python.call(*python.interrupt, nullptr);
    if (!error)
        return; // out of memory: that error ends the script
    python.setCause(error, nullptr);
    python.setObject(*python.interrupt, error);
    python.release(error);
}

void InterpreterCalls::raiseAtEveryLine()
{
    if (!isInterpreterThere())
        return;
    const Interpreter& python = interpreter();
    if (!theError) {
        theError = python.call(*python.interrupt, nullptr);
        if (!theError)
            return;                         // out of memory: that error ends the script
        python.setCause(theError, nullptr); // hides the errors that the script was handling
        origin = {};
        exitsLeft = mostExits;
        deadline = std::chrono::steady_clock::now() + finaliserPatience;
        python.setTrace(raiseAgain, nullptr);
    }
    python.setObject(*python.interrupt, theError);
}

void InterpreterCalls::endFinaliser(void* frame)
{
    if (!isInterpreterThere() || !theError || mayFinish(frame) || !isDelicate(frame))
        return;
    interpreter().setObject(*interpreter().interrupt, theError);
}

void InterpreterCalls::dropPendingSignals()
{
    if (!isInterpreterThere())
        return;
    const ThreadState state;
    if (theError)
        endTracing();
    constexpr int mostErrors = 10; // one for each signal that a script may handle in a way that raises
    for (int i = 0; i < mostErrors && interpreter().checkSignals() != 0; ++i)
        interpreter().clear();
}
