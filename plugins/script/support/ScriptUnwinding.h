#pragma once

// Ending Python code that would swallow the error standing for a native exception (NativeGuard.h).

/// From now on the lines and calls of the Python code on this thread raise that error, until no native exception is
/// kept any more. Tracing that the script had set is suspended meanwhile. Called with no error set; leaves none.
void fx_beginUnwinding() noexcept;

/// Makes the interpreter's main thread do so, as soon as it comes to run Python code. Called on another one.
void fx_beginUnwindingOnMainThread() noexcept;

/// Gives this thread the tracing back that the script had set. Called before the next Python code that is to run; does
/// nothing on a thread that is not unwinding, and nothing without an interpreter. Leaves no error set.
void fx_endUnwinding() noexcept;
