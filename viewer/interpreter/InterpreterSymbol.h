#pragma once

#include <dlfcn.h>

/// A function of the interpreter, or null. Functions are found by name at run time, since the viewer works with any
/// plugin.
template<typename Signature>
Signature* interpreterFunction(const char* name)
{
    return reinterpret_cast<Signature*>(dlsym(RTLD_DEFAULT, name));
}
