#include "ProductModule.h"

#include <QtCore/QByteArray>

#include <array>
#include <climits>
#include <dlfcn.h>

namespace {

/// The folder of the core library. The loader has noted it as an absolute path, which stays right when the working
/// directory changes.
QByteArray coreFolder()
{
    Dl_info core = {};
    if (dladdr(reinterpret_cast<void*>(&moduleFunction), &core) == 0)
        return {};
    void* library = dlopen(core.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
    if (!library)
        return {};
    std::array<char, PATH_MAX> folder = {};
    const bool known = dlinfo(library, RTLD_DI_ORIGIN, folder.data()) == 0;
    dlclose(library);
    return known ? QByteArray(folder.data()) : QByteArray();
}

} // namespace

void* moduleFunction(const char* module, const char* function, QString& problem)
{
    // Bound lazily: most functions of the libraries behind a module are never called.
    void* library = dlopen((coreFolder() + "/vantrel/" + module).constData(), RTLD_LAZY | RTLD_LOCAL);
    void* found = library ? dlsym(library, function) : nullptr;
    if (!found)
        problem = QString::fromLocal8Bit(dlerror());
    return found;
}
