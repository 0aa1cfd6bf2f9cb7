#pragma once

#include "PythonApi.h"

#include <type_traits>

// C++ exceptions and the interpreter.
//
// Host code and the standard library may throw while a script is calling into the plugin. Such an exception must not
// unwind the interpreter's own frames: they would leave its frame chain pointing at dead stack. So every function that
// the interpreter calls is wrapped: the exception is kept, the interpreter sees a BaseException and unwinds itself, and
// the code that started the evaluation throws the kept exception again. Until then nothing of the script reaches the
// host: a wrapped function raises at its entry, only deallocation goes on. A script that swallows the error does not
// get far, since its next line or call raises the error again (ScriptUnwinding.h).

/// Keeps the exception in flight (the first one of a run wins) and sets a Python error. Called in a catch block.
void fx_keepNativeException() noexcept;

/// Whether an exception is kept.
bool fx_isNativeExceptionKept() noexcept;

/// What a function does at its entry while an exception is kept: sets the Python error and sees to it that the script
/// on this thread ends.
void fx_refuseAfterNativeException() noexcept;

/// Sets the Python error that stands for a native exception, in place of the one that is set.
void fx_raiseNativeException() noexcept;

/// Throws the kept exception, if there is one, and clears the Python error that stands for it. No Python code may run
/// between this and the end of the run, or the next fx_keepNativeException().
void fx_rethrowNativeException();

/// Forgets a kept exception, and clears the Python error that stands for it.
void fx_forgetNativeException() noexcept;

/// Forgets a kept exception; true when there was one. Needs no interpreter: called before one starts and after its end,
/// on the thread that runs scripts next.
bool fx_dropNativeException() noexcept;

namespace native_guard {

template<auto Function, typename Signature = decltype(Function)>
struct Guarded;

template<auto Function, typename Result, typename... Arguments>
struct Guarded<Function, Result (*)(Arguments...)> {
    static Result call(Arguments... arguments) noexcept
    {
        // Deallocation, which alone returns nothing, always does its work.
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

/// The same as the value of a slot.
template<auto Function>
void* guardedSlot()
{
    return reinterpret_cast<void*>(guarded<Function>);
}
