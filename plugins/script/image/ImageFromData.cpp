// Filling an image from a file or from script data.

#include "CxImageData.h"
#include "CxImageFormatManager.h"
#include "ImageMethods.h"
#include "Narrowing.h"
#include "ScriptModule.h"
#include "app/AppFunctions.h"
#include "support/PyRef.h"

#include <limits>

static TxPyImage& record(PyObject* self)
{
    return *reinterpret_cast<TxPyImage*>(self);
}

// ---- shared by the methods ----

PyObject* fx_img_raise(const char* text)
{
    PyErr_SetString(PyExc_Exception, text);
    return nullptr;
}

bool fx_img_allocate(OwnedPicBuf& target, const ImageSize& size)
{
    constexpr std::int64_t most = std::numeric_limits<std::uint32_t>::max();
    const auto fits = [](std::int64_t number) { return number > 0 && number <= most; };
    if (!fits(size.width) || !fits(size.height) || !fits(size.channels))
        return false;
    SxPicBufInfo info = target.buffer;
    info.width = std::uint32_t(size.width);
    info.height = std::uint32_t(size.height);
    info.channels = std::uint32_t(size.channels);
    info.storageFormat = ExDataStorageFormat::Interleaved;
    return target.allocate(info);
}

// From the call on the pixels are the image's, and what its class leaves in the record does not count.
static void attach(CxImageData& image, OwnedPicBuf& pixels)
{
    SxPicBuf given = pixels.release();
    image.attachPicBuf(&given);
}

PyObject* fx_img_installNarrowed(TxPyImage& object, OwnedPicBuf filled)
{
    auto image = std::make_unique<CxImageData>();
    OwnedPicBuf narrowed;
    if (fx_img_convertToBestBpc(narrowed.buffer, filled.buffer)) {
        attach(*image, narrowed);
        filled.free(); // before the object's image goes
    } else {
        attach(*image, filled);
    }
    fx_img_installImage(object, std::move(image));
    return fx_app_none();
}

// ---- methods ----

static std::unique_ptr<CxImageData> readImage(CxImageFileLoader& loader)
{
    if (!loader.readFile())
        return nullptr;
    auto* image = qobject_cast<CxImageData*>(loader.frameAt(0));
    if (!image)
        return nullptr;
    std::unique_ptr<QObject> copy(image->clone(nullptr, nullptr));
    auto* result = qobject_cast<CxImageData*>(copy.get());
    if (result)
        static_cast<void>(copy.release());
    return std::unique_ptr<CxImageData>(result);
}

PyObject* fx_pyimg_FromFile(PyObject* self, PyObject* args)
{
    const char* utf8 = nullptr;
    if (!self || !PyArg_ParseTuple(args, "s", &utf8))
        return nullptr;
    const QString path = fx_app_resolvePath(utf8);
    std::unique_ptr<CxImageFileLoader> loader(CxImageFormatManager::instance()->loaderForFile(path));
    if (!loader)
        return fx_img_raise("cannot open file");
    std::unique_ptr<CxImageData> image = readImage(*loader);
    loader.reset();
    // A damaged file has been logged by its loader; the object is empty then.
    fx_img_installImage(record(self), std::move(image));
    return fx_app_none();
}

PyObject* fx_pyimg_FromArray(PyObject* self, PyObject* object)
{
    if (!object)
        return nullptr;
    const PyRef arrayInterface = PyRef::take(PyObject_GetAttrString(object, "__array_interface__"));
    if (arrayInterface)
        return fx_pyimages_CreateFromArrayInterface(record(self), arrayInterface.get());
    // Any Exception of the look-up means that there is none. What is not one (an interrupt) ends the script.
    if (!PyErr_ExceptionMatches(PyExc_Exception))
        return nullptr;
    PyErr_Clear();
    if (PyList_Check(object))
        return fx_pyimages_CreateFromList(record(self), object);
    return fx_img_raise(
        "object passed doesn't support neither buffer protocol, nor __array_interface__, and is not list.");
}
