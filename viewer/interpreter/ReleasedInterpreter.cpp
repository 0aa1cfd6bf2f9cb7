#include "ReleasedInterpreter.h"

#include "InterpreterSymbol.h"

#include <initializer_list>
#include <unistd.h>

namespace {

bool isRunning()
{
    const auto isInitialized = interpreterFunction<int()>("Py_IsInitialized");
    return isInitialized && isInitialized();
}

/// Whether the calling thread uses the interpreter. Before 3.12 the functions tell the state of whatever thread does:
/// the caller knows that no other one can.
bool isInUse()
{
    if (!isRunning())
        return false;
    // The name since 3.13, and the one before.
    for (const char* name : {"PyThreadState_GetUnchecked", "_PyThreadState_UncheckedGet"})
        if (const auto current = interpreterFunction<void*()>(name))
            return current() != nullptr;
    return false;
}

} // namespace

ReleasedInterpreter::ReleasedInterpreter()
{
    const auto save = interpreterFunction<void*()>("PyEval_SaveThread");
    if (save && interpreterFunction<void(void*)>("PyEval_RestoreThread") && isInUse())
        m_state = save();
}

ReleasedInterpreter::~ReleasedInterpreter()
{
    if (!m_state)
        return;
    // A thread that a script has left behind while the interpreter ended: the interpreter would end the thread and
    // unwind the host's functions on it, which may not be ready for that. The process is about to end.
    while (!isRunning())
        pause();
    interpreterFunction<void(void*)>("PyEval_RestoreThread")(m_state);
}
