#pragma once

#include "PythonApi.h"

#include <type_traits>

// C++ exceptions and the interpreter.
//
// Host code and the standard library may throw while a script calls into the plugin. Such an exception must not unwind
// the interpreter's frames: its frame chain would then point at dead stack. Every function that the interpreter calls
// is therefore wrapped. The wrapper keeps the exception and sets a BaseException, which unwinds the interpreter. Then
// the code that started the evaluation throws the kept exception again. Until then the script cannot reach the host:
// every wrapped function raises at its entry, and only deallocation still works. If the script swallows the error, its
// next line or call raises the error again (ScriptUnwinding.h).

/// Keeps the current exception, or the first one if a run throws several, and sets a Python error. Call it in a catch
/// block.
void fx_keepNativeException() noexcept;

/// Whether an exception is kept.
bool fx_isNativeExceptionKept() noexcept;

/// Refuses a call that enters while an exception is kept: sets the Python error and makes the script on this thread
/// end.
void fx_refuseAfterNativeException() noexcept;

/// Sets the Python error that stands for a native exception. Replaces any pending error.
void fx_raiseNativeException() noexcept;

/// Clears the Python error that stands for the kept exception and throws the exception. Does nothing if none is kept.
/// No Python code may run from then until the end of the run or the next fx_keepNativeException().
void fx_rethrowNativeException();

/// Forgets the kept exception and clears the Python error that stands for it. Does nothing if none is kept.
void fx_forgetNativeException() noexcept;

/// Forgets the kept exception and returns whether there was one. Needs no interpreter. The calling thread becomes the
/// thread that runs scripts.
bool fx_dropNativeException() noexcept;

namespace native_guard {

template<auto Function, typename Signature = decltype(Function)>
struct Guarded;

template<auto Function, typename Result, typename... Arguments>
struct Guarded<Function, Result (*)(Arguments...)> {
    static Result call(Arguments... arguments) noexcept
    {
        // Only deallocation returns void, and it must always run.
        if (!std::is_void_v<Result> && fx_isNativeExceptionKept()) {
            fx_refuseAfterNativeException();
            return failure();
        }
        try {
            return Function(arguments...);
        } catch (...) {
            fx_keepNativeException();
        }
        return failure();
    }

private:
    static Result failure() noexcept
    {
        if constexpr (std::is_pointer_v<Result>)
            return nullptr;
        else if constexpr (!std::is_void_v<Result>)
            return Result(-1);
    }
};

} // namespace native_guard

/// The function to put into method tables: guarded<fx_pyapp_OpenFile>.
template<auto Function>
inline constexpr auto guarded = &native_guard::Guarded<Function>::call;

/// The same function as the value of a type slot.
template<auto Function>
void* guardedSlot()
{
    return reinterpret_cast<void*>(guarded<Function>);
}
