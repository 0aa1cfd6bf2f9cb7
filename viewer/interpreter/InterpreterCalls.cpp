// A pending error alone does not end a script that swallows errors in a loop. A trace function raises again at each
// line, and so takes one block after another off the stack. The interpreter keeps a trace function that was set with
// PyEval_SetTrace(), even if the function raises.

#include "InterpreterCalls.h"

#include "InterpreterFunctions.h"

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

// The interpreter's event numbers.
enum Event : int { Call = 0, Exception = 1, Line = 2, Return = 3, Opcode = 7 };

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

/// Until when finalisers, the start of a program and its end may go on.
std::chrono::steady_clock::time_point deadline;

/// Whether theError has been raised. Until then a program that the script has started is not about to end.
bool isRaised = false;

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

/// Whether the frame is one of the viewer's own, which stand below or above those of a script. The functions between
/// two scripts do not count: a stop has to pass them.
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

bool isInSubprocess(Object* frame)
{
    return isFunction(frame, "", "/subprocess.py");
}

/// Whether a frame may go on although the script is to end. After an error `subprocess` ends the program.
bool mayFinish(Object* frame)
{
    return isOfViewer(frame) || (std::chrono::steady_clock::now() < deadline &&
                                 (InterpreterCalls::isDelicate(frame) || (isRaised && isInSubprocess(frame))));
}

void raiseTheError()
{
    isRaised = true;
    interpreter().setObject(*interpreter().interrupt, theError);
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
    raiseTheError();
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
    // Where `run` and `call` have just started a program, the `with` statement that ends it has not begun.
    bool found = isFunction(frame, "run", "/subprocess.py") || isFunction(frame, "call", "/subprocess.py") ||
                 isFunction(frame, "__enter__", "/subprocess.py");
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

void InterpreterCalls::raiseAtEveryLine(void* frame)
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
        isRaised = false;
        deadline = std::chrono::steady_clock::now() + finaliserPatience;
        python.setTrace(raiseAgain, nullptr);
    }
    if (!isDelicate(frame))
        raiseTheError();
}

void InterpreterCalls::endDelicate(void* frame)
{
    if (isInterpreterThere() && theError && !mayFinish(frame) && (isDelicate(frame) || isInSubprocess(frame)))
        raiseTheError();
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
