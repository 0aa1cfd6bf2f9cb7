#pragma once

#include "OwnedPicBuf.h"
#include "SxPicBuf.h"
#include "support/Convert.h"

#include <memory>

class CxImageData;

// The type vantrel.Image, as its own parts see it.

/// The instance record.
struct TxPyImage {
    PyObject_HEAD CxImageData* imageData; ///< the host image this object stands for; null for an empty object
    bool ownsData;                        ///< whether the object deletes the image, or borrows one kept elsewhere
};

/// The type object of the running interpreter; null until the module is made.
extern PyTypeObject* TxPyImageType;

extern PyMethodDef px_image_meths[];

/// The picture buffer behind an object, or null (no error set): the object is null, of another type or empty, or its
/// image has no buffer. The buffer may be without pixels.
SxPicBuf* fx_img_buffer(PyObject* object);

/// Deletes the object's image if the object owns it, and leaves the object empty.
void fx_img_releaseImage(TxPyImage& object);

/// Replaces the object's image: the old one is released, the new one (perhaps null) is owned by the object.
void fx_img_installImage(TxPyImage& object, std::unique_ptr<CxImageData> image);

/// A new vantrel.Image that owns the image; null with an error set when it cannot be made.
PyObject* fx_img_newOwner(std::unique_ptr<CxImageData> image);

/// A new vantrel.Image of these pixels, which are freed when it cannot be made (null with an error set).
PyObject* fx_img_newOwner(OwnedPicBuf pixels);

/// Attribute look-up, the getattro slot: ImageAttributes.cpp.
PyObject* fx_pyimg_GetAttrO(PyObject* self, PyObject* name);

/// Prepares the table of attribute names; false with an error set when there is no memory for it.
bool fx_img_prepareAttributes();
