#pragma once

// The only header that includes the interpreter's headers. It selects the limited API of 3.8, so that a library built
// against one supported interpreter runs with all others. It also selects 64-bit lengths in argument formats.

#define PY_SSIZE_T_CLEAN
#define Py_LIMITED_API 0x03080000
#include <Python.h>
