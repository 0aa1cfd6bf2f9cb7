#include "InterpreterSymbols.h"

#include "PythonApi.h"

#include <QtCore/qglobal.h>

#if defined(Q_OS_UNIX)
#include <dlfcn.h>
#endif

void* fx_findInterpreterSymbol([[maybe_unused]] const char* name)
{
#if defined(Q_OS_UNIX)
    Dl_info library = {};
    if (dladdr(reinterpret_cast<const void*>(&Py_Initialize), &library) == 0)
        return nullptr;
    // If the interpreter is linked into the program, the program has the symbols.
    void* handle = dlopen(library.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
    return dlsym(handle ? handle : RTLD_DEFAULT, name);
#else
    return nullptr;
#endif
}

unsigned long fx_interpreterVersion()
{
    static const auto* version = static_cast<const unsigned long*>(fx_findInterpreterSymbol("Py_Version"));
    return version ? *version : 0;
}

bool fx_hasThreadStatePerThread()
{
    return fx_interpreterVersion() >= 0x030C0000;
}
