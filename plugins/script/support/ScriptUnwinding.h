#pragma once

// Ends Python code that would swallow the error that stands for a native exception (NativeGuard.h).

/// Makes each line and call of Python code on this thread raise that error while a native exception is kept. Suspends
/// the tracing that the script had set. Call it with no error set; it leaves none.
void fx_beginUnwinding() noexcept;

/// Makes the interpreter's main thread call fx_beginUnwinding() as soon as it runs Python code. Call it on another
/// thread.
void fx_beginUnwindingOnMainThread() noexcept;

/// Restores the tracing that the script had set on this thread. Call it before further Python code runs. Does nothing
/// if this thread is not unwinding or if there is no interpreter. Leaves no error set.
void fx_endUnwinding() noexcept;
