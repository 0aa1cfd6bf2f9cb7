#include "InterpreterLibrary.h"

#include "support/PythonApi.h"

#include <QtCore/QtGlobal>

#if defined(Q_OS_UNIX)
#include <dlfcn.h>
#endif

void fx_makeInterpreterSymbolsGlobal()
{
#if defined(Q_OS_UNIX)
    Dl_info library = {};
    if (dladdr(reinterpret_cast<const void*>(&Py_Initialize), &library) != 0 && library.dli_fname)
        dlopen(library.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_GLOBAL); // stays open like the library
#endif
}

void fx_setInterpreterPaths(const std::wstring& program, const std::wstring& home)
{
    // Deprecated since 3.11, but the replacements are not in the limited API.
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    Py_SetProgramName(program.c_str());
    Py_SetPythonHome(home.c_str());
    QT_WARNING_POP
}
