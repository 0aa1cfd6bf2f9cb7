// The dialog in which the user captures an image.

#include "CameraObject.h"
#include "CxImageData.h"
#include "IxAppDelegate.h"
#include "OwnedPicBuf.h"
#include "support/HostContext.h"

#include <memory>

PyObject* fx_pycam_AskUserCaptureImage(PyObject* self, PyObject* args)
{
    const char* givenTitle = nullptr;
    const char* givenMessage = nullptr;
    int option = -1;
    if (!self || !PyArg_ParseTuple(args, "|ssi", &givenTitle, &givenMessage, &option))
        return nullptr;
    QString title = QStringLiteral("Capture Image");
    if (givenTitle && *givenTitle)
        title = QString::fromUtf8(givenTitle);
    QString message = QStringLiteral("Get the image right and press Capture button.");
    if (givenMessage && *givenMessage)
        message = QString::fromUtf8(givenMessage);
    IxAppDelegate* delegate = fx_delegate();
    if (!delegate)
        return nullptr;

    std::unique_ptr<SxPicBuf> record(delegate->askUserCaptureImage(
        nullptr, fx_record<pycam_userdata>(self).cameraHandle, &title, &message, option >= 0, &option, 0));
    if (!record)
        return PyLong_FromLong(-1);
    OwnedPicBuf pixels;
    pixels.buffer = *record;
    auto image = std::make_unique<CxImageData>();
    image->setPicBuf(*record);
    static_cast<void>(pixels.release());
    record.reset();
    if (!delegate->newViewWithImage(image.get(), title))
        return PyLong_FromLong(-1);
    static_cast<void>(image.release());
    return PyLong_FromLong(delegate->activeViewId());
}
