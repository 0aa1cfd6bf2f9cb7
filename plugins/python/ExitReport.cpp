#include "ExitReport.h"

#include <cstdio>
#include <cstdlib>

namespace {

const std::string* collected = nullptr; // of the run in progress

void writeCollected()
{
    if (!collected)
        return;
    std::fwrite(collected->data(), 1, collected->size(), stderr);
    std::fflush(stderr);
}

} // namespace

ExitReport::ExitReport(const std::string& errors)
{
    // Goes with the library, should that be unloaded first.
    static const bool registered = std::atexit(writeCollected) == 0;
    static_cast<void>(registered);
    collected = &errors;
}

ExitReport::~ExitReport()
{
    collected = nullptr;
}
