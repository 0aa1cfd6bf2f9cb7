#pragma once

// Functions of the interpreter that the plugin must not import: they are not in the limited API, or only newer versions
// have them. They are looked up by name.

/// The address of a function or variable of the interpreter's library. Null if the library does not have the name.
void* fx_findInterpreterSymbol(const char* name);

/// The same for a function, as a pointer to it.
template<typename Function>
Function* fx_findInterpreterFunction(const char* name)
{
    return reinterpret_cast<Function*>(fx_findInterpreterSymbol(name));
}

/// The interpreter's version in the form of PY_VERSION_HEX. 0 before 3.11.
unsigned long fx_interpreterVersion();

/// Whether the interpreter is 3.12 or newer. These versions keep the current thread state for each thread separately,
/// and they end the process if a module is added to the table of built-in modules while the interpreter lives.
bool fx_hasThreadStatePerThread();
