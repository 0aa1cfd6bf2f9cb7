#pragma once

#include "OwnedPicBuf.h"
#include "SxPicBuf.h"
#include "support/Convert.h"

#include <memory>

class CxImageData;

// The type vantrel.Image, for the files that implement it.

/// The instance record.
struct TxPyImage {
    PyObject_HEAD CxImageData* imageData; ///< the host image behind this object; null for an empty object
    bool ownsData;                        ///< true if the object deletes the image, false if it borrows the image
};

/// The type object of the running interpreter; null until the module exists.
extern PyTypeObject* TxPyImageType;

extern PyMethodDef px_image_meths[];

/// The picture buffer behind an object. Null without an error if the object is null, empty or of another type, or if
/// the image has no buffer. The buffer may have no pixels.
SxPicBuf* fx_img_buffer(PyObject* object);

/// Deletes the object's image if the object owns it, and leaves the object empty.
void fx_img_releaseImage(TxPyImage& object);

/// Releases the object's image and gives the object ownership of a new image, which may be null.
void fx_img_installImage(TxPyImage& object, std::unique_ptr<CxImageData> image);

/// A new vantrel.Image that owns the image. On failure, null with an error set; the image is then deleted.
PyObject* fx_img_newOwner(std::unique_ptr<CxImageData> image);

/// A new vantrel.Image that owns the pixels. On failure, null with an error set; the pixels are then freed.
PyObject* fx_img_newOwner(OwnedPicBuf pixels);

/// The attribute look-up, for the getattro slot. Defined in ImageAttributes.cpp.
PyObject* fx_pyimg_GetAttrO(PyObject* self, PyObject* name);

/// Prepares the table of attribute names. False with an error set if memory runs out.
bool fx_img_prepareAttributes();
