// Taking over the main thread state from 3.12 on. The functions are found by name, because the plugin imports none that
// touches thread states.

#include "InterpreterThread.h"

#include "InterpreterSymbols.h"

#include <atomic>

namespace {

struct ThreadFunctions {
    // The name since 3.13, and the one before.
    PyThreadState* (*current)() = fx_findInterpreterFunction<PyThreadState*()>("PyThreadState_GetUnchecked");
    PyThreadState* (*currentBefore313)() = fx_findInterpreterFunction<PyThreadState*()>("_PyThreadState_UncheckedGet");
    PyInterpreterState* (*mainInterpreter)() =
        fx_findInterpreterFunction<PyInterpreterState*()>("PyInterpreterState_Main");
    PyThreadState* (*create)(PyInterpreterState*) =
        fx_findInterpreterFunction<PyThreadState*(PyInterpreterState*)>("PyThreadState_New");
    PyThreadState* (*swap)(PyThreadState*) =
        fx_findInterpreterFunction<PyThreadState*(PyThreadState*)>("PyThreadState_Swap");
    void (*clear)(PyThreadState*) = fx_findInterpreterFunction<void(PyThreadState*)>("PyThreadState_Clear");
    void (*destroyCurrent)() = fx_findInterpreterFunction<void()>("PyThreadState_DeleteCurrent");
    PyThreadState* (*save)() = fx_findInterpreterFunction<PyThreadState*()>("PyEval_SaveThread");
    void (*restore)(PyThreadState*) = fx_findInterpreterFunction<void(PyThreadState*)>("PyEval_RestoreThread");
    PyGILState_STATE (*ensure)() = fx_findInterpreterFunction<PyGILState_STATE()>("PyGILState_Ensure");
    void (*release)(PyGILState_STATE) = fx_findInterpreterFunction<void(PyGILState_STATE)>("PyGILState_Release");
};

const ThreadFunctions& functions()
{
    static const ThreadFunctions found;
    return found;
}

PyThreadState* currentState()
{
    const ThreadFunctions& python = functions();
    return python.current ? python.current() : python.currentBefore313();
}

/// The main thread state while no thread of the host uses it.
std::atomic<PyThreadState*> leftState = nullptr;

/// Takes the main thread state off the calling thread, for the next thread.
void leaveState(PyThreadState* state)
{
    const ThreadFunctions& python = functions();
    // PyEval_SaveThread() alone would leave the state bound to this thread for PyGILState_Ensure(): compiled modules
    // that call it in a run on another thread would wait for ever. Another state takes the place first.
    PyThreadState* spare = python.create(python.mainInterpreter());
    if (!spare) {
        leftState = python.save();
        return;
    }
    python.swap(spare);
    leftState = state;
    python.clear(spare);
    python.destroyCurrent(); // releases the interpreter lock
}

} // namespace

InterpreterThread::InterpreterThread()
{
    if (!fx_hasThreadStatePerThread() || currentState())
        return;
    m_thread = Thread::BorrowsTheMainState;
    if (PyThreadState* state = leftState.exchange(nullptr)) {
        functions().restore(state);
    } else if (Py_IsInitialized()) {
        m_thread = Thread::HasAStateForAWhile;
        m_state = functions().ensure();
    }
}

InterpreterThread::~InterpreterThread()
{
    if (m_thread == Thread::HasAState)
        return;
    PyThreadState* state = currentState();
    if (!state) // the interpreter was not started, or it was finalised
        return;
    if (m_thread == Thread::HasAStateForAWhile)
        functions().release(m_state);
    else
        leaveState(state);
}
