#pragma once

#include "ImageObject.h"

#include <cstdint>

// The methods of vantrel.Image that stand apart from its type, one file a subject; FuncImage.cpp holds their table.
// An empty object, which is one without a CxImageData, makes each of them return null without an error, but for the two
// that fill it. So does an image whose buffer is needed and null, and pixels that would be read or written here and are
// not there. Everything else about images without pixels is left to the host's operations, which refuse them.

// ---- from files and data: ImageFromFile.cpp, ImageFromArray.cpp, ImageFromList.cpp ----

PyObject* fx_pyimg_FromFile(PyObject* self, PyObject* args);
PyObject* fx_pyimg_FromArray(PyObject* self, PyObject* object);

// ---- shared by those that fill an image from data: ImageFilling.cpp ----

/// Narrows filled pixels and makes them the object's image. Returns None.
PyObject* fx_img_installNarrowed(TxPyImage& object, OwnedPicBuf filled);

/// Sizes as a script gave them; negative and enormous ones are possible and never fit a buffer.
struct ImageSize {
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::int64_t channels = 0;
};

/// Allocates pixels, not cleared, for a size and the type and bpc that are set in the buffer. False when
/// that is not possible; no error is set.
bool fx_img_allocate(OwnedPicBuf& target, const ImageSize& size);

/// Makes the object's image of an array interface dictionary, or of nested lists. None, or null with an error set: the
/// object then keeps its image. (Something else than a dictionary gives null without an error.)
PyObject* fx_pyimages_CreateFromArrayInterface(TxPyImage& object, PyObject* dictionary);
PyObject* fx_pyimages_CreateFromList(TxPyImage& object, PyObject* list);

// ---- pixels and drawing: ImagePixels.cpp ----

PyObject* fx_pyimg_GetPixelValue(PyObject* self, PyObject* args);
PyObject* fx_pyimg_SetPixelValue(PyObject* self, PyObject* args);
PyObject* fx_pyimg_DrawPixelLine(PyObject* self, PyObject* args);
PyObject* fx_pyimg_DrawPixelRect(PyObject* self, PyObject* args);

// ---- operations: ImageOperations.cpp ----

PyObject* fx_pyimg_ToRgb(PyObject* self, PyObject* args);
PyObject* fx_pyimg_ExtractChannel(PyObject* self, PyObject* args);
PyObject* fx_pyimg_ConvertBpc(PyObject* self, PyObject* args);
PyObject* fx_pyimg_NewCopy(PyObject* self, PyObject* args);
PyObject* fx_pyimg_Crop(PyObject* self, PyObject* args);
PyObject* fx_pyimg_Resize(PyObject* self, PyObject* args);
PyObject* fx_pyimg_CopyTo(PyObject* self, PyObject* other);
PyObject* fx_pyimg_CopyRectTo(PyObject* self, PyObject* args);
PyObject* fx_pyimg_ResizeTo(PyObject* self, PyObject* other);
PyObject* fx_pyimg_ResizeRectTo(PyObject* self, PyObject* args);
PyObject* fx_pyimg_Add(PyObject* self, PyObject* other);
PyObject* fx_pyimg_Subtract(PyObject* self, PyObject* other);
PyObject* fx_pyimg_DivideByValue(PyObject* self, PyObject* args);
PyObject* fx_pyimg_SaveToFile(PyObject* self, PyObject* args);

// ---- measurements: ImageMeasure.cpp ----

PyObject* fx_pyimg_MeasureRect(PyObject* self, PyObject* args);
PyObject* fx_pyimg_MeasureRowProfilesInRect(PyObject* self, PyObject* args);
PyObject* fx_pyimg_MeasureColumnProfilesInRect(PyObject* self, PyObject* args);
