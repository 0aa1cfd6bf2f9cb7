#pragma once

#include <string>

// Preparations that the interpreter's library needs before it is initialised.

/// Makes the symbols of the loaded Python library visible to the whole process. Otherwise, if the host loads this
/// plugin with local symbols, extension modules (ctypes, ssl, NumPy) do not find the symbols that they need.
void fx_makeInterpreterSymbolsGlobal();

/// Sets the program name and the home directory. The interpreter copies both.
void fx_setInterpreterPaths(const std::wstring& program, const std::wstring& home);
