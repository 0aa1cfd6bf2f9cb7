#pragma once

#include "PythonApi.h"

#include <type_traits>

// C++ exceptions and the interpreter.
//
// Host code and the standard library may throw while a script is calling into the plugin. Such an exception must not
// unwind the interpreter's own frames: they would leave its frame chain pointing at dead stack. So every function that
// the interpreter calls is wrapped: the exception is kept, the interpreter sees a BaseException and unwinds itself, and
// whoever started the evaluation throws the kept exception again.

/// Keeps the exception in flight (the first one of a run wins) and sets a Python error. Called in a catch block.
void fx_keepNativeException() noexcept;

/// Throws the kept exception, if there is one, and clears the Python error that stands for it.
void fx_rethrowNativeException();

/// Forgets a kept exception; true when there was one. Needs no interpreter.
bool fx_dropNativeException() noexcept;

namespace native_guard {

template<auto Function, typename Signature = decltype(Function)>
struct Guarded;

template<auto Function, typename Result, typename... Arguments>
struct Guarded<Function, Result (*)(Arguments...)> {
    static Result call(Arguments... arguments) noexcept
    {
        try {
            return Function(arguments...);
        } catch (...) {
            fx_keepNativeException();
        }
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
