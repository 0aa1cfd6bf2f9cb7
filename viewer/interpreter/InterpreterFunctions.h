#pragma once

#include "InterpreterSymbol.h"

#include <cstddef>

/// An object of the interpreter.
using Object = void;
using TraceFunction = int (*)(Object*, Object*, int, Object*);

/// What InterpreterCalls needs of the interpreter.
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

inline const Interpreter& interpreter()
{
    static const Interpreter functions; // first used when the interpreter runs
    return functions;
}

inline bool isInterpreterThere()
{
    // The library may be loaded after the first question, so that is asked without remembering the answer.
    const auto isInitialized = interpreterFunction<int()>("Py_IsInitialized");
    return isInitialized && isInitialized() && interpreter().isThere();
}
