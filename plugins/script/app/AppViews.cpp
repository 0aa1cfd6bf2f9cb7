// Views, files and video.

#include "AppFunctions.h"
#include "CxImageData.h"
#include "CxImageFileSaver.h"
#include "CxImageFormatManager.h"
#include "CxMdiView.h"
#include "IxAppDelegate.h"
#include "IxScriptEnvironment.h"
#include "ScriptModule.h"
#include "TakeAs.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <memory>

namespace {

/// An independent copy of an image. Null with an error set if memory runs out.
std::unique_ptr<CxImageData> cloneImage(CxImageData& image)
{
    std::unique_ptr<CxImageData> copy = takeAs<CxImageData>(image.clone(nullptr, nullptr));
    if (!copy)
        fx_raise("cannot allocate new image, out of memory");
    return copy;
}

/// The view with the given identifier, or null.
CxMdiView* findView(IxAppDelegate& delegate, int id)
{
    return delegate.view(fx_app_resolveViewId(delegate, id));
}

} // namespace

PyObject* fx_pyapp_OpenFile(PyObject* /*module*/, PyObject* args)
{
    if (!fx_onMainThread("vantrel.open_file: running GUI function from non-main thread"))
        return nullptr;
    const char* path = nullptr;
    if (!PyArg_ParseTuple(args, "s", &path))
        return nullptr;
    IxAppDelegate* delegate = fx_delegate();
    if (!delegate || !delegate->openFile(fx_resolvePath(path), true))
        return nullptr;
    return PyLong_FromLong(delegate->activeViewId());
}

PyObject* fx_pyapp_SaveToFile(PyObject* /*module*/, PyObject* args)
{
    const char* path = nullptr;
    IxAppDelegate* delegate = fx_enter(args, "s", &path);
    if (!delegate)
        return nullptr;
    const QString resolved = fx_resolvePath(path);
    QDir().mkpath(QFileInfo(resolved).absolutePath());
    CxImageData* image = delegate->viewImage(delegate->activeViewId());
    if (!image)
        return nullptr;
    const std::unique_ptr<CxImageFileSaver> saver(CxImageFormatManager::instance()->saverForFile(resolved));
    if (!saver)
        return nullptr;
    saver->saveImage(image, nullptr);
    return fx_none();
}

PyObject* fx_pyapp_DuplicateView(PyObject* /*module*/, PyObject* args)
{
    int id = -1;
    IxAppDelegate* delegate = fx_enter(args, "|i", &id);
    if (!delegate)
        return nullptr;
    return PyLong_FromLong(delegate->duplicateView(id) ? delegate->activeViewId() : -1);
}

PyObject* fx_pyapp_GetActiveViewId(PyObject* /*module*/, PyObject* /*args*/)
{
    if (!fx_onMainThread())
        return nullptr;
    IxAppDelegate* delegate = fx_delegate();
    return delegate ? PyLong_FromLong(delegate->activeViewId()) : nullptr;
}

PyObject* fx_pyapp_ActivateView(PyObject* /*module*/, PyObject* args)
{
    int id = -1;
    IxAppDelegate* delegate = fx_enter(args, "|i", &id);
    if (!delegate)
        return nullptr;
    delegate->activateView(id);
    return fx_none();
}

PyObject* fx_pyapp_CloseView(PyObject* /*module*/, PyObject* args)
{
    int id = -1;
    IxAppDelegate* delegate = fx_enter(args, "|i", &id);
    if (!delegate)
        return nullptr;
    if (CxMdiView* view = findView(*delegate, id))
        view->closeMdiView();
    return fx_none();
}

PyObject* fx_pyapp_TileViews(PyObject* /*module*/, PyObject* /*args*/)
{
    if (!fx_onMainThread())
        return nullptr;
    IxAppDelegate* delegate = fx_delegate();
    if (!delegate)
        return nullptr;
    delegate->tileViews();
    return fx_none();
}

PyObject* fx_pyapp_SwitchFullScreen(PyObject* /*module*/, PyObject* args)
{
    int on = 0;
    IxAppDelegate* delegate = fx_enter(args, "p", &on);
    if (!delegate)
        return nullptr;
    delegate->setFullScreen(on != 0);
    return fx_none();
}

PyObject* fx_pyapp_WaitForNextFrame(PyObject* /*module*/, PyObject* args)
{
    double timeout = -1.0;
    int id = -1;
    IxAppDelegate* delegate = fx_enter(args, "|di", &timeout, &id);
    if (!delegate)
        return nullptr;
    CxMdiView* view = findView(*delegate, id);
    if (!view)
        return fx_raise("vantrel.WaitForNextFrame: view not found");
    return fx_bool(g_pScriptPlugin->waitForNextFrame(view, timeout));
}

PyObject* fx_pyapp_Wait(PyObject* /*module*/, PyObject* args)
{
    if (!fx_onMainThread())
        return nullptr;
    double time = 0.0;
    if (!PyArg_ParseTuple(args, "d", &time))
        return nullptr;
    g_pScriptPlugin->wait(time);
    return fx_none();
}

PyObject* fx_pyapp_GetViewImage(PyObject* /*module*/, PyObject* args)
{
    int id = -1;
    if (!PyArg_ParseTuple(args, "|i", &id))
        return nullptr;
    IxAppDelegate* delegate = fx_delegate();
    if (!delegate)
        return nullptr;
    CxImageData* shown = delegate->viewImage(fx_app_resolveViewId(*delegate, id));
    if (!shown)
        return fx_raise("no view or view contains no image");
    std::unique_ptr<CxImageData> copy = cloneImage(*shown);
    if (!copy)
        return nullptr;
    PyObject* object = fx_pyimg_createNewImageObject(copy.get(), true);
    if (object)
        static_cast<void>(copy.release());
    return object;
}

PyObject* fx_pyapp_SetViewImage(PyObject* /*module*/, PyObject* args)
{
    PyObject* object = nullptr;
    int id = -1;
    IxAppDelegate* delegate = fx_enter(args, "O|i", &object, &id);
    CxImageData* image = delegate ? fx_pyimg_getImageObjectData(object) : nullptr;
    if (!image)
        return nullptr;
    id = fx_app_resolveViewId(*delegate, id);
    std::unique_ptr<CxImageData> copy = cloneImage(*image);
    if (!copy)
        return nullptr;
    delegate->setViewImage(id, copy.release());
    return fx_none();
}

PyObject* fx_pyapp_NewViewWithImage(PyObject* /*module*/, PyObject* args)
{
    PyObject* object = nullptr;
    const char* title = nullptr;
    IxAppDelegate* delegate = fx_enter(args, "O|s", &object, &title);
    CxImageData* image = delegate ? fx_pyimg_getImageObjectData(object) : nullptr;
    if (!image)
        return nullptr;
    const QString text = title && *title ? QString::fromUtf8(title) : QStringLiteral("Image from script");
    std::unique_ptr<CxImageData> copy = cloneImage(*image);
    if (!copy)
        return nullptr;
    if (!delegate->newViewWithImage(copy.get(), text))
        return PyLong_FromLong(-1);
    static_cast<void>(copy.release());
    return PyLong_FromLong(delegate->activeViewId());
}

PyObject* fx_pyapp_RecordVideoToFile(PyObject* /*module*/, PyObject* args)
{
    const char* path = nullptr;
    int id = -1;
    IxAppDelegate* delegate = fx_enter(args, "s|i", &path, &id);
    if (!delegate)
        return nullptr;
    const QString resolved = fx_resolvePath(path);
    CxMdiView* view = findView(*delegate, id);
    return fx_bool(view && view->startVideoRecording(resolved));
}

PyObject* fx_pyapp_StopVideoRecording(PyObject* /*module*/, PyObject* args)
{
    int id = -1;
    IxAppDelegate* delegate = fx_enter(args, "|i", &id);
    if (!delegate)
        return nullptr;
    if (CxMdiView* view = findView(*delegate, id))
        view->stopVideoRecording();
    return fx_none();
}
