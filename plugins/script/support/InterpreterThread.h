#pragma once

#include "PythonApi.h"

/// Lets the calling thread use the interpreter while the object lives. Each function that the host calls and that uses
/// the interpreter begins with one.
///
/// Before 3.12 the interpreter has one current thread state for the whole process, that of the thread that started it,
/// and every thread of the host uses it. From 3.12 on each thread has its own, so that another thread would have none.
/// There the object takes the main thread state over to the calling thread and afterwards leaves it to the next one. In
/// between no thread of the host holds the interpreter lock, so threads of a script go on.
///
/// Does nothing before 3.12, on a thread that already has a thread state, which includes nested objects, and while
/// there is no interpreter. If the interpreter starts while the object lives, the end of the object leaves the new main
/// thread state to the next one. If another thread uses the main thread state, waits for the interpreter lock and uses
/// a thread state of its own.
class InterpreterThread
{
public:
    InterpreterThread();
    ~InterpreterThread();
    InterpreterThread(const InterpreterThread&) = delete;
    InterpreterThread& operator=(const InterpreterThread&) = delete;

private:
    enum class Thread { HasAState, BorrowsTheMainState, HasAStateForAWhile };

    Thread m_thread = Thread::HasAState;
    PyGILState_STATE m_state = PyGILState_LOCKED; ///< of a thread that has a state for a while
};
