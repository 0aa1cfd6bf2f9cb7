#include "NativeGuard.h"

#include <exception>
#include <utility>

namespace {
// One for the process: scripts run one at a time.
std::exception_ptr keptException;
} // namespace

void fx_keepNativeException() noexcept
{
    if (!keptException)
        keptException = std::current_exception();
    // Not an Exception, so that a script's `except Exception` does not swallow it and work on with a broken host.
    PyErr_SetString(PyExc_BaseException, "native exception");
}

void fx_rethrowNativeException()
{
    if (!keptException)
        return;
    PyErr_Clear();
    std::rethrow_exception(std::exchange(keptException, nullptr));
}

bool fx_dropNativeException() noexcept
{
    return std::exchange(keptException, nullptr) != nullptr;
}
