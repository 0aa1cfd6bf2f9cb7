#pragma once

#include "support/PythonApi.h"

#include <QtCore/qglobal.h>

#include <string>

class CxImageData;

// The interface of the module `vantrel` to the plugin core and between the module's parts.

// ---- exported from the library with C linkage ----

extern "C" {

/// Adds the module to the interpreter's table of built-in modules. Call it before the interpreter is initialised. On
/// failure writes a message to the standard error stream; scripts then lack the module.
Q_DECL_EXPORT void fx_pyapp_register();

/// Runs a UTF-8 source text as a file in the namespace of __main__. The interpreter prints a Python error, which never
/// stays pending. Throws again an exception that host code threw during the call (NativeGuard.h).
Q_DECL_EXPORT void fx_pyapp_RunPythonString(const char* text);

/// The module's initialisation function. Returns the new module, or null with an error set.
Q_DECL_EXPORT PyObject* py_app_moduleInit();

/// Makes a vantrel.Image for a host image. If owns is nonzero, the object deletes the image; otherwise it borrows the
/// image. Returns a new reference. On failure returns null with an error set, and the caller keeps the image.
Q_DECL_EXPORT PyObject* fx_pyimg_createNewImageObject(CxImageData* image, int owns);

/// The image of an object; its owner does not change. Null for a null object, for an object that is not a
/// vantrel.Image, and for an empty vantrel.Image. Sets no error.
Q_DECL_EXPORT CxImageData* fx_pyimg_getImageObjectData(PyObject* object);

/// For the host, not for scripts. Saves the camera's current flat-field settings as a preset and replaces a preset of
/// the same name. self is a vantrel.Camera. args are the preset's name, its reference text and optionally its note.
/// Returns None. On failure returns null, perhaps without an error set.
Q_DECL_EXPORT PyObject* fx_pycam_CreateShadingPreset(PyObject* self, PyObject* args);

/// For the host, not for scripts. Writes a preset's settings to the camera. args holds the preset's name; an unknown
/// name is ignored. Returns None. On failure returns null, perhaps without an error set.
Q_DECL_EXPORT PyObject* fx_pycam_ActivateShadingPreset(PyObject* self, PyObject* args);

} // extern "C"

// ---- for the plugin core and the module's functions ----

/// fx_pyapp_RunPythonString() for a text that may contain null bytes. The interpreter would stop reading at a null byte
/// and run only part of the script. This function runs nothing of such a text and prints a ValueError.
void fx_script_runText(const std::string& text);

// ---- for the module's initialisation ----
// ...TypeReady attaches the help texts and creates the type. On failure logs an error and leaves the type null.
// ...TypeAdd adds the type to the module. Returns 1 on success, and 0 if the type is null or adding fails.

void fx_pycams_TypeReady();
int fx_pycams_TypeAdd(PyObject* module);

void fx_pygraphs_TypeReady();
int fx_pygraphs_TypeAdd(PyObject* module);

void fx_pyimages_TypeReady();
int fx_pyimages_TypeAdd(PyObject* module);
