#include "ExitReport.h"

#include "support/PythonApi.h"

#include <cstdio>
#include <cstdlib>
#include <pthread.h>
#include <utility>

namespace {

const std::string* collected = nullptr; // of the run in progress
std::size_t inherited = 0;              // how much of it belongs to the process that has forked this one

void writeCollected()
{
    const std::string* text = std::exchange(collected, nullptr);
    if (!text)
        return;
    std::fwrite(text->data() + inherited, 1, text->size() - inherited, stderr);
    std::fflush(stderr);
}

void beginChild()
{
    inherited = collected ? collected->size() : 0;
}

} // namespace

void ExitReport::writeWhenInterpreterEnds()
{
    Py_AtExit(writeCollected);
}

ExitReport::ExitReport(const std::string& errors)
{
    // For host code that calls exit() itself. Unloading the library runs the function and removes it.
    static const bool registered =
        std::atexit(writeCollected) == 0 && pthread_atfork(nullptr, nullptr, beginChild) == 0;
    static_cast<void>(registered);
    collected = &errors;
    inherited = 0;
}

ExitReport::~ExitReport()
{
    collected = nullptr;
}
