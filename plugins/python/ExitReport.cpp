#include "ExitReport.h"

#include "support/PythonApi.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

const std::string* collected = nullptr; // of the run in progress

void writeCollected()
{
    const std::string* text = std::exchange(collected, nullptr);
    if (!text)
        return;
    std::fwrite(text->data(), 1, text->size(), stderr);
    std::fflush(stderr);
}

} // namespace

void ExitReport::writeWhenInterpreterEnds()
{
    Py_AtExit(writeCollected);
}

ExitReport::ExitReport(const std::string& errors)
{
    // For host code that calls exit() itself. Unloading the library runs the function and removes it.
    static const bool registered = std::atexit(writeCollected) == 0;
    static_cast<void>(registered);
    collected = &errors;
}

ExitReport::~ExitReport()
{
    collected = nullptr;
}
