#include "NativeGuard.h"

#include "PyRef.h"
#include "ScriptUnwinding.h"

#include <exception>
#include <thread>
#include <utility>

namespace {
// One for the process: scripts run one at a time.
std::exception_ptr keptException;
std::thread::id runningThread;
} // namespace

void fx_keepNativeException() noexcept
{
    if (!keptException)
        keptException = std::current_exception();
    if (runningThread != std::this_thread::get_id())
        fx_beginUnwindingOnMainThread(); // which may wait in a loop for this thread
    fx_refuseAfterNativeException();
}

bool fx_isNativeExceptionKept() noexcept
{
    return keptException != nullptr;
}

void fx_refuseAfterNativeException() noexcept
{
    PyErr_Clear();
    fx_beginUnwinding();
    fx_raiseNativeException();
}

void fx_raiseNativeException() noexcept
{
    // A BaseException, because `except Exception` would let the script continue with a broken host. PyErr_Restore()
    // does not chain the error being handled as context; chaining would run code.
    PyErr_Restore(PyRef::retain(PyExc_BaseException).release(), PyUnicode_FromString("native exception"), nullptr);
}

void fx_rethrowNativeException()
{
    if (!keptException)
        return;
    PyErr_Clear(); // releases the script's objects while their finalisers are still refused
    fx_endUnwinding();
    std::rethrow_exception(std::exchange(keptException, nullptr));
}

void fx_forgetNativeException() noexcept
{
    if (!keptException)
        return;
    PyErr_Clear();
    fx_endUnwinding();
    keptException = nullptr;
}

bool fx_dropNativeException() noexcept
{
    runningThread = std::this_thread::get_id();
    return std::exchange(keptException, nullptr) != nullptr;
}
