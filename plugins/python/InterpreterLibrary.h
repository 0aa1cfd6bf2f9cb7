#pragma once

#include <string>

// What must be arranged around the interpreter's library before it is initialised.

/// Makes the symbols of the loaded Python library visible to the whole process. A host that loads this plugin with
/// local symbols would otherwise leave extension modules (ctypes, ssl, NumPy) without the symbols they expect to find.
void fx_makeInterpreterSymbolsGlobal();

/// Sets the program name and the home directory; the interpreter copies both.
void fx_setInterpreterPaths(const std::wstring& program, const std::wstring& home);
