// Filling an image from a file.

#include "CxImageData.h"
#include "CxImageFormatManager.h"
#include "ImageMethods.h"
#include "TakeAs.h"
#include "support/HostContext.h"

static std::unique_ptr<CxImageData> readImage(CxImageFileLoader& loader)
{
    auto* image = loader.readFile() ? qobject_cast<CxImageData*>(loader.frameAt(0)) : nullptr;
    return image ? takeAs<CxImageData>(image->clone(nullptr, nullptr)) : nullptr;
}

PyObject* fx_pyimg_FromFile(PyObject* self, PyObject* args)
{
    const char* utf8 = nullptr;
    if (!self || !PyArg_ParseTuple(args, "s", &utf8))
        return nullptr;
    const QString path = fx_resolvePath(utf8);
    std::unique_ptr<CxImageFileLoader> loader(CxImageFormatManager::instance()->loaderForFile(path));
    if (!loader)
        return fx_raise("cannot open file");
    std::unique_ptr<CxImageData> image = readImage(*loader);
    loader.reset();
    // If the file is damaged, the loader has logged the reason, and the object becomes empty.
    fx_img_installImage(fx_record<TxPyImage>(self), std::move(image));
    return fx_none();
}
