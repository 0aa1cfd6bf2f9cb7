// The type vantrel.Image: its objects, ownership of their images, its simple methods and its tables.

#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "OwnedPicBuf.h"
#include "ScriptModule.h"
#include "image/ImageMethods.h"
#include "image/ImageObject.h"
#include "support/Convert.h"
#include "support/HostContext.h"
#include "support/InterpreterThread.h"
#include "support/NativeGuard.h"
#include "support/PyRef.h"

#include <QtCore/QString>

PyTypeObject* TxPyImageType = nullptr;

// ---- creation and access from elsewhere ----

PyObject* fx_pyimg_createNewImageObject(CxImageData* image, int owns)
{
    const InterpreterThread thread;
    if (!TxPyImageType)
        return fx_raise("vantrel.Image is not available");
    PyObject* object = PyObject_CallObject(reinterpret_cast<PyObject*>(TxPyImageType), nullptr);
    if (!object)
        return nullptr;
    fx_record<TxPyImage>(object).imageData = image;
    fx_record<TxPyImage>(object).ownsData = owns != 0;
    return object;
}

CxImageData* fx_pyimg_getImageObjectData(PyObject* object)
{
    // The type cannot be subclassed, so the exact type is enough.
    if (!object || Py_TYPE(object) != TxPyImageType)
        return nullptr;
    return fx_record<TxPyImage>(object).imageData;
}

SxPicBuf* fx_img_buffer(PyObject* object)
{
    CxImageData* image = fx_pyimg_getImageObjectData(object);
    return image ? image->picBuf() : nullptr;
}

void fx_img_releaseImage(TxPyImage& object)
{
    CxImageData* owned = object.ownsData ? object.imageData : nullptr;
    object.imageData = nullptr;
    object.ownsData = false;
    delete owned;
}

void fx_img_installImage(TxPyImage& object, std::unique_ptr<CxImageData> image)
{
    fx_img_releaseImage(object);
    object.imageData = image.release();
    object.ownsData = true;
}

PyObject* fx_img_newOwner(std::unique_ptr<CxImageData> image)
{
    PyObject* object = fx_pyimg_createNewImageObject(image.get(), true);
    if (object)
        static_cast<void>(image.release());
    return object;
}

PyObject* fx_img_newOwner(OwnedPicBuf pixels)
{
    auto image = std::make_unique<CxImageData>();
    image->setPicBuf(pixels.release());
    return fx_img_newOwner(std::move(image));
}

// ---- construction, destruction and text form ----

static int fx_pyimg_Init(PyObject* self, PyObject* /*args*/, PyObject* /*keywords*/)
{
    fx_record<TxPyImage>(self).imageData = nullptr;
    fx_record<TxPyImage>(self).ownsData = false;
    return 0;
}

// Releases the host's image but never the object's memory. After the last reference is gone, the record's address still
// holds an empty object.
static void fx_pyimg_Free(PyObject* self)
{
    if (self)
        fx_img_releaseImage(fx_record<TxPyImage>(self));
}

static QString typeWord(const SxPicBufInfo& info)
{
    switch (info.dataType) {
    case ExImageDataType::None:
        return QStringLiteral("N/A");
    case ExImageDataType::Int8:
    case ExImageDataType::Int16:
    case ExImageDataType::Int32:
    case ExImageDataType::Int64:
        return QStringLiteral("int");
    case ExImageDataType::UInt8:
    case ExImageDataType::UInt16:
    case ExImageDataType::UInt32:
    case ExImageDataType::UInt64:
        return QStringLiteral("unsigned int");
    case ExImageDataType::Float:
    case ExImageDataType::Double:
        return QStringLiteral("float");
    case ExImageDataType::Packed565:
        return QStringLiteral("packed565");
    }
    return QString();
}

static PyObject* fx_pyimg_ToString(PyObject* self)
{
    QString text = QStringLiteral("Vantrel image object is empty");
    if (const SxPicBuf* buffer = fx_img_buffer(self)) {
        QString type = typeWord(*buffer);
        if (buffer->isColor)
            type += QStringLiteral(" RGB");
        text = QStringLiteral("Vantrel image, width: %1, height: %2, channels: %3, bit per channel (bpc): %4, type: %5")
                   .arg(buffer->width)
                   .arg(buffer->height)
                   .arg(buffer->channels)
                   .arg(buffer->bpc)
                   .arg(type);
    }
    const QByteArray utf8 = text.toUtf8();
    return PyUnicode_FromStringAndSize(utf8.constData(), utf8.size());
}

// ---- simple methods: an empty object gives null without an error set; the interpreter reports that ----

static PyObject* fx_pyimg_GetWidth(PyObject* self, PyObject* /*args*/)
{
    const SxPicBuf* buffer = fx_img_buffer(self);
    return buffer ? PyLong_FromUnsignedLong(buffer->width) : nullptr;
}

static PyObject* fx_pyimg_GetHeight(PyObject* self, PyObject* /*args*/)
{
    const SxPicBuf* buffer = fx_img_buffer(self);
    return buffer ? PyLong_FromUnsignedLong(buffer->height) : nullptr;
}

static PyObject* fx_pyimg_GetChannels(PyObject* self, PyObject* /*args*/)
{
    const SxPicBuf* buffer = fx_img_buffer(self);
    return buffer ? PyLong_FromUnsignedLong(buffer->channels) : nullptr;
}

static PyObject* fx_pyimg_GetBpc(PyObject* self, PyObject* /*args*/)
{
    const SxPicBuf* buffer = fx_img_buffer(self);
    return buffer ? PyLong_FromUnsignedLong(buffer->bpc) : nullptr;
}

static PyObject* fx_pyimg_GetFrameNumber(PyObject* self, PyObject* /*args*/)
{
    const SxPicBuf* buffer = fx_img_buffer(self);
    return buffer ? PyLong_FromLong(buffer->frameNumber) : nullptr;
}

static PyObject* fx_pyimg_GetTimeStamp(PyObject* self, PyObject* /*args*/)
{
    const SxPicBuf* buffer = fx_img_buffer(self);
    return buffer ? PyLong_FromUnsignedLongLong(buffer->timeStamp) : nullptr;
}

static PyObject* fx_pyimg_GetBytesPerPixel(PyObject* self, PyObject* /*args*/)
{
    const SxPicBuf* buffer = fx_img_buffer(self);
    return buffer ? PyLong_FromUnsignedLong(buffer->bytesPerPixel()) : nullptr;
}

static PyObject* fx_pyimg_Bytes(PyObject* self, PyObject* /*args*/)
{
    const SxPicBuf* buffer = fx_img_buffer(self);
    // From a buffer without memory the result would be bytes of arbitrary content.
    if (!buffer || (!buffer->data && buffer->dataSize() > 0))
        return fx_raise("Vantrel image object is empty");
    return PyBytes_FromStringAndSize(reinterpret_cast<const char*>(buffer->data), Py_ssize_t(buffer->dataSize()));
}

static PyObject* fx_pyimg_GetImageDataNumpy(PyObject* self, PyObject* args)
{
    int raw = 0;
    if (!PyArg_ParseTuple(args, "|p", &raw))
        return nullptr;
    CxImageData* own = fx_record<TxPyImage>(self).imageData;
    if (own && raw)
        return PyRef::retain(self).release();
    const SxPicBuf* buffer = own ? own->picBuf() : nullptr;
    if (!buffer)
        return nullptr;
    if (!buffer->isColor)
        return PyRef::retain(self).release();

    OwnedPicBuf swapped;
    if (!fx_img_allocateResult(swapped, *buffer))
        return fx_raise("Cannot allocate image");
    fx_img_fillCorner(swapped.buffer, buffer->width, buffer->height,
                      [&] { return CxPicBufAPI::CopyPicBuf(swapped.buffer, *buffer, true); });
    CxPicBufAPI::SwapRedAndBlue(swapped.buffer);
    auto image = std::make_unique<CxImageData>();
    image->setPicBuf(swapped.buffer);
    static_cast<void>(swapped.release()); // the image now owns the pixels
    image->setImageMetadata(own->imageMetadata());
    return fx_img_newOwner(std::move(image));
}

static PyObject* fx_pyimg_Alloc(PyObject* self, PyObject* args)
{
    int width = 0;
    int height = 0;
    int channels = 0;
    int bpc = 0;
    if (!PyArg_ParseTuple(args, "iiii", &width, &height, &channels, &bpc))
        return nullptr;
    if (width <= 0 || height <= 0 || channels <= 0 || bpc <= 0)
        return fx_raise("argument out of range");
    if (bpc > 32)
        return fx_raise("number of bits out of range");
    const ExImageDataType dataType = SxPicBufInfo::unsignedTypeForBits(unsigned(bpc));
    OwnedPicBuf pixels;
    CxPicBufAPI::AllocPicBufFromHeap(pixels.buffer, unsigned(width), unsigned(height), unsigned(channels), dataType, 0,
                                     0, unsigned(bpc), ExDataStorageFormat::Interleaved, ExColorFilterArray::None,
                                     SxPicBufInfo::isColorChannelCount(unsigned(channels)), true, 0);
    if (!pixels.buffer.data)
        return fx_raise("cannot allocate new image, out of memory");
    auto image = std::make_unique<CxImageData>();
    image->setPicBuf(pixels.release());
    fx_img_installImage(fx_record<TxPyImage>(self), std::move(image));
    return fx_none();
}

// ---- tables ----

// Writable: the help texts are filled in before the type is made. "__bytes__" must stay first: the attribute "tobytes"
// is this entry bound to its object.
PyMethodDef px_image_meths[] = {
    {"__bytes__", guarded<fx_pyimg_Bytes>, METH_NOARGS, nullptr},
    {"alloc", guarded<fx_pyimg_Alloc>, METH_VARARGS, nullptr},
    {"get_width", guarded<fx_pyimg_GetWidth>, METH_NOARGS, nullptr},
    {"get_height", guarded<fx_pyimg_GetHeight>, METH_NOARGS, nullptr},
    {"get_channels", guarded<fx_pyimg_GetChannels>, METH_NOARGS, nullptr},
    {"get_bpc", guarded<fx_pyimg_GetBpc>, METH_NOARGS, nullptr},
    {"get_frame_number", guarded<fx_pyimg_GetFrameNumber>, METH_NOARGS, nullptr},
    {"get_time_stamp", guarded<fx_pyimg_GetTimeStamp>, METH_NOARGS, nullptr},
    {"get_bytes_per_pixel", guarded<fx_pyimg_GetBytesPerPixel>, METH_NOARGS, nullptr},
    {"get_image_data_raw", guarded<fx_pyimg_Bytes>, METH_NOARGS, nullptr},
    {"get_image_data_numpy", guarded<fx_pyimg_GetImageDataNumpy>, METH_VARARGS, nullptr},
    {"from_file", guarded<fx_pyimg_FromFile>, METH_VARARGS, nullptr},
    {"from_array", guarded<fx_pyimg_FromArray>, METH_O, nullptr},
    {"get_pixel_value", guarded<fx_pyimg_GetPixelValue>, METH_VARARGS, nullptr},
    {"set_pixel_value", guarded<fx_pyimg_SetPixelValue>, METH_VARARGS, nullptr},
    {"draw_pixel_line", guarded<fx_pyimg_DrawPixelLine>, METH_VARARGS, nullptr},
    {"draw_pixel_rect", guarded<fx_pyimg_DrawPixelRect>, METH_VARARGS, nullptr},
    {"to_rgb", guarded<fx_pyimg_ToRgb>, METH_NOARGS, nullptr},
    {"extract_channel", guarded<fx_pyimg_ExtractChannel>, METH_VARARGS, nullptr},
    {"convert_bpc", guarded<fx_pyimg_ConvertBpc>, METH_VARARGS, nullptr},
    {"new_copy", guarded<fx_pyimg_NewCopy>, METH_NOARGS, nullptr},
    {"crop", guarded<fx_pyimg_Crop>, METH_VARARGS, nullptr},
    {"resize", guarded<fx_pyimg_Resize>, METH_VARARGS, nullptr},
    {"copy_to", guarded<fx_pyimg_CopyTo>, METH_O, nullptr},
    {"copy_rect_to", guarded<fx_pyimg_CopyRectTo>, METH_VARARGS, nullptr},
    {"resize_to", guarded<fx_pyimg_ResizeTo>, METH_O, nullptr},
    // The published name has this spelling, and scripts use it.
    {"tesize_rect_to", guarded<fx_pyimg_ResizeRectTo>, METH_VARARGS, nullptr},
    {"add", guarded<fx_pyimg_Add>, METH_O, nullptr},
    {"subtract", guarded<fx_pyimg_Subtract>, METH_O, nullptr},
    {"divide_by_value", guarded<fx_pyimg_DivideByValue>, METH_VARARGS, nullptr},
    {"save_to_file", guarded<fx_pyimg_SaveToFile>, METH_VARARGS, nullptr},
    {"measure_rect", guarded<fx_pyimg_MeasureRect>, METH_VARARGS, nullptr},
    {"measure_row_profiles_in_rect", guarded<fx_pyimg_MeasureRowProfilesInRect>, METH_VARARGS, nullptr},
    {"measure_column_profiles_in_rect", guarded<fx_pyimg_MeasureColumnProfilesInRect>, METH_VARARGS, nullptr},
    {nullptr, nullptr, 0, nullptr},
};

static PyType_Slot TxPyImageType_Slots[] = {
    {Py_tp_dealloc, guardedSlot<fx_pyimg_Free>()},
    {Py_tp_str, guardedSlot<fx_pyimg_ToString>()},
    {Py_tp_getattro, guardedSlot<fx_pyimg_GetAttrO>()},
    {Py_tp_methods, px_image_meths},
    {Py_tp_init, guardedSlot<fx_pyimg_Init>()},
    {Py_tp_new, reinterpret_cast<void*>(PyType_GenericNew)},
    {0, nullptr},
};

static PyType_Spec TxPyImageType_Spec = {
    "vantrel.Image",     // name
    sizeof(TxPyImage),   // basicsize
    0,                   // itemsize
    Py_TPFLAGS_DEFAULT,  // flags: cannot be subclassed
    TxPyImageType_Slots, // slots
};

// ---- registration ----

void fx_pyimages_TypeReady()
{
    fx_addHelp("vantrel", nullptr, "imgObj", px_image_meths);
    TxPyImageType = nullptr;
    if (fx_img_prepareAttributes())
        TxPyImageType = fx_makeType(TxPyImageType_Spec, "fx_pyimages_TypeReady(): %1",
                                    "Failed to register vantrel.ImageType with limited API");
}

int fx_pyimages_TypeAdd(PyObject* module)
{
    return fx_addType(module, "Image", TxPyImageType);
}
