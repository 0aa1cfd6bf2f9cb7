#pragma once

// The one header that includes the interpreter's own. It fixes the limited API of 3.8, so that a library built against
// any offered interpreter uses nothing that the others lack, and 64-bit lengths in argument formats.

#define PY_SSIZE_T_CLEAN
#define Py_LIMITED_API 0x03080000
#include <Python.h>
