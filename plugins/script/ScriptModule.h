#pragma once

#include "support/PythonApi.h"

#include <QtCore/qglobal.h>

#include <string>

class CxImageData;

// The module `vantrel`: what it offers to the plugin core and to its own parts.

// ---- offered, exported from the library with C linkage ----

extern "C" {

/// Adds the module to the interpreter's table of built-in modules. Called before the interpreter is initialised. A
/// failure is written to the standard error stream; the module is then missing.
Q_DECL_EXPORT void fx_pyapp_register();

/// Runs a UTF-8 source text as a file in the namespace of __main__. A Python error is printed by the interpreter and
/// never left pending. An exception that host code threw meanwhile is thrown on (NativeGuard.h).
Q_DECL_EXPORT void fx_pyapp_RunPythonString(const char* text);

/// The module's initialisation function. Returns the new module, or null with an error set.
Q_DECL_EXPORT PyObject* py_app_moduleInit();

/// A new vantrel.Image for a host image; with owns the object deletes the image, without it borrows it. Returns a new
/// reference, or null with an error set: the image then stays the caller's.
Q_DECL_EXPORT PyObject* fx_pyimg_createNewImageObject(CxImageData* image, int owns);

/// The image behind an object, still owned as before. Null for null, for an object that is no vantrel.Image, and for
/// one that is empty; no error is set.
Q_DECL_EXPORT CxImageData* fx_pyimg_getImageObjectData(PyObject* object);

/// For the host, not for scripts: saves the camera's current flat-field settings as a preset, in place of one of the
/// same name. self is a vantrel.Camera; args are the preset's name, its reference text and perhaps its note. Returns
/// None, or null (perhaps without an error) on failure.
Q_DECL_EXPORT PyObject* fx_pycam_CreateShadingPreset(PyObject* self, PyObject* args);

/// For the host, not for scripts: writes a preset's settings to the camera. args are the preset's name; an unknown one
/// is ignored. Returns None, or null (perhaps without an error) on failure.
Q_DECL_EXPORT PyObject* fx_pycam_ActivateShadingPreset(PyObject* self, PyObject* args);

} // extern "C"

// ---- offered to the plugin core and to the module's functions ----

/// fx_pyapp_RunPythonString() for a text of any bytes. One with a null byte, at which the interpreter would stop
/// reading and run half a script, is refused: nothing of it runs, and a ValueError is printed.
void fx_script_runText(const std::string& text);

// ---- offered to the module's initialisation ----
// ...TypeReady attaches the help texts and creates the type; a failure is logged and leaves the type null.
// ...TypeAdd adds it to the module: 1 on success, 0 when the type is null or adding fails.

void fx_pycams_TypeReady();
int fx_pycams_TypeAdd(PyObject* module);

void fx_pygraphs_TypeReady();
int fx_pygraphs_TypeAdd(PyObject* module);

void fx_pyimages_TypeReady();
int fx_pyimages_TypeAdd(PyObject* module);
