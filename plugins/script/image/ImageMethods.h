#pragma once

#include "ImageObject.h"

#include <cstdint>

struct ArrayLayout;

// Methods of vantrel.Image, one file for each subject. FuncImage.cpp holds the method table.
//
// An object without a CxImageData is empty. For an empty object each method returns null without an error, except for
// the two methods that fill the object. A method also returns null without an error if the image lacks a buffer that
// the method needs, or pixels that the method itself reads or writes. In all other cases the host's operations refuse
// images without pixels.

// ---- from files and data: ImageFromFile.cpp, ImageFromArray.cpp, ImageFromList.cpp ----

PyObject* fx_pyimg_FromFile(PyObject* self, PyObject* args);
PyObject* fx_pyimg_FromArray(PyObject* self, PyObject* object);

// ---- shared by the functions that fill an image from data: ImageFilling.cpp ----

/// Converts pixels to the smallest data type that fits, and makes them the object's image. Returns None. With an array,
/// the pixels are those of arrayInPlace() and not in `filled` yet, which is allocated for them.
PyObject* fx_img_installNarrowed(TxPyImage& object, OwnedPicBuf filled, const ArrayLayout* array = nullptr);

/// Sizes from a script. They may be negative or enormous; such sizes never fit a buffer.
struct ImageSize {
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::int64_t channels = 0;
};

/// Allocates pixels, not cleared, for a size and for the type and bpc that are set in the buffer. On failure, returns
/// false without an error.
bool fx_img_allocate(OwnedPicBuf& target, const ImageSize& size);

/// Fills the object from an array interface dictionary or from nested lists. Returns None. On failure, returns null
/// with an error set, and the object keeps its image. An argument that is not a dictionary gives null without an error.
PyObject* fx_pyimages_CreateFromArrayInterface(TxPyImage& object, PyObject* dictionary);
PyObject* fx_pyimages_CreateFromList(TxPyImage& object, PyObject* list);

// ---- pixels and drawing: ImagePixels.cpp ----

PyObject* fx_pyimg_GetPixelValue(PyObject* self, PyObject* args);
PyObject* fx_pyimg_SetPixelValue(PyObject* self, PyObject* args);
PyObject* fx_pyimg_DrawPixelLine(PyObject* self, PyObject* args);
PyObject* fx_pyimg_DrawPixelRect(PyObject* self, PyObject* args);

// ---- operations: ImageOperations.cpp ----

/// Allocates the pixels of an operation's result. Asks the host for cleared memory, but leaves the clearing to the
/// caller if the host can do that: use fx_img_fillCorner(). Returns what the host returns.
bool fx_img_allocateResult(OwnedPicBuf& result, const SxPicBufInfo& info);

/// Clears the memory of a buffer, line padding included, except for the pixels of its top left corner.
void fx_img_clearAllBut(SxPicBuf& buffer, std::uint32_t width, std::uint32_t height);

/// Runs an operation that fills the top left corner of a result and returns true, or refuses and returns false. Clears
/// the rest. Does so first: then the padding is in the processor's cache when the pixels beside it are written.
template<typename Operation>
void fx_img_fillCorner(SxPicBuf& result, std::uint32_t width, std::uint32_t height, Operation operation)
{
    fx_img_clearAllBut(result, width, height);
    if (!operation())
        fx_img_clearAllBut(result, 0, 0);
}

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
