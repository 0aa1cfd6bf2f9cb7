// The type vantrel.Camera: its objects, attaching them to the host's cameras, device information, acquisition, and its
// tables.

#include "CxCameraManager.h"
#include "CxCameraParameters.h"
#include "IxAppDelegate.h"
#include "ScriptModule.h"
#include "camera/CameraObject.h"
#include "support/Convert.h"
#include "support/HostContext.h"
#include "support/NativeGuard.h"

#include <QtCore/QString>

PyTypeObject* TxPyCameraType = nullptr;

CxCameraParameters* fx_cam_parameters(PyObject* self)
{
    return self ? CxCameraManager::instance()->cameraParameters(fx_record<pycam_userdata>(self).cameraHandle) : nullptr;
}

// ---- module function ----

PyObject* fx_pycams_GetCount(PyObject* /*module*/, PyObject* /*args*/)
{
    return PyLong_FromUnsignedLong(quint32(CxCameraManager::instance()->openedCameraCount()));
}

// ---- construction and text form ----

static int fx_pycam_Init(PyObject* self, PyObject* /*args*/, PyObject* /*keywords*/)
{
    fx_record<pycam_userdata>(self).cameraHandle = nullptr;
    return 0;
}

static PyObject* fx_pycam_ToString(PyObject* self)
{
    const CxCameraParameters* parameters = fx_cam_parameters(self);
    if (!parameters)
        return fx_text(QStringLiteral("camera(disconnected)"));
    const SxCameraInfo& info = parameters->cameraInfo();
    return fx_text(QStringLiteral("camera(%1, sn: %2)").arg(info.deviceName, info.serialNumber));
}

// ---- attaching and detaching ----

static PyObject* fx_pycam_Open(PyObject* self, PyObject* args)
{
    if (!self)
        return nullptr;
    int index = 0;
    if (!PyArg_ParseTuple(args, "|i", &index))
        return nullptr;
    const QList<void*> cameras = CxCameraManager::instance()->openedCameras();
    if (index < 0 || index >= cameras.size())
        return fx_raise("Camera not available");
    fx_record<pycam_userdata>(self).cameraHandle = cameras.at(index);
    return fx_none();
}

/// Attaches the first opened camera whose description has the given text in that field. Ignores the letter case.
static PyObject* openByText(PyObject* self, PyObject* args, QString SxCameraInfo::*field)
{
    if (!self)
        return nullptr;
    const char* utf8 = nullptr;
    if (!PyArg_ParseTuple(args, "s", &utf8))
        return nullptr;
    const QString wanted = QString::fromUtf8(utf8);
    const CxCameraManager& manager = *CxCameraManager::instance();
    void* found = nullptr;
    const QList<void*> cameras = manager.openedCameras();
    for (void* camera : cameras) {
        const CxCameraParameters* parameters = manager.cameraParameters(camera);
        if (!parameters || QString::compare(parameters->cameraInfo().*field, wanted, Qt::CaseInsensitive) != 0)
            continue;
        found = camera;
        break;
    }
    if (!found)
        return fx_raise("Camera not found");
    fx_record<pycam_userdata>(self).cameraHandle = found;
    return fx_none();
}

static PyObject* fx_pycam_OpenByUserId(PyObject* self, PyObject* args)
{
    return openByText(self, args, &SxCameraInfo::userId);
}

static PyObject* fx_pycam_OpenBySN(PyObject* self, PyObject* args)
{
    return openByText(self, args, &SxCameraInfo::serialNumber);
}

static PyObject* fx_pycam_OpenByPath(PyObject* self, PyObject* args)
{
    return openByText(self, args, &SxCameraInfo::instancePath);
}

static PyObject* fx_pycam_Close(PyObject* self, PyObject* /*args*/)
{
    if (!self)
        return nullptr;
    fx_record<pycam_userdata>(self).cameraHandle = nullptr;
    return fx_none();
}

// ---- device information ----

static PyObject* fx_pycam_GetDeviceInfoString(PyObject* self, PyObject* args)
{
    const char* utf8 = nullptr;
    if (!self || !PyArg_ParseTuple(args, "s", &utf8))
        return nullptr;
    const CxCameraParameters* parameters = fx_cam_parameters(self);
    if (!parameters)
        return nullptr;
    CxValue value;
    fx_cam_describe(parameters->cameraInfo(), QString::fromUtf8(utf8), value);
    return fx_text(value.toString()); // empty for an unknown key
}

// ---- acquisition ----

static PyObject* fx_pycam_StartAcquisition(PyObject* self, PyObject* /*args*/)
{
    IxAppDelegate* delegate = self ? fx_delegate() : nullptr;
    if (!delegate)
        return nullptr;
    const bool started = delegate->setCameraAcquisition(true, fx_record<pycam_userdata>(self).cameraHandle);
    return PyLong_FromLong(started ? delegate->activeViewId() : -1);
}

static PyObject* fx_pycam_StopAcquisition(PyObject* self, PyObject* /*args*/)
{
    IxAppDelegate* delegate = self ? fx_delegate() : nullptr;
    if (!delegate)
        return nullptr;
    delegate->setCameraAcquisition(false, fx_record<pycam_userdata>(self).cameraHandle);
    return fx_none();
}

// ---- tables ----

// Writable: the help texts are filled in before the type is made.
static PyMethodDef px_camera_meths[] = {
    {"open_device", guarded<fx_pycam_Open>, METH_VARARGS, nullptr},
    {"open_device_by_user_id", guarded<fx_pycam_OpenByUserId>, METH_VARARGS, nullptr},
    {"open_device_by_SN", guarded<fx_pycam_OpenBySN>, METH_VARARGS, nullptr},
    {"open_device_by_path", guarded<fx_pycam_OpenByPath>, METH_VARARGS, nullptr},
    {"close_device", guarded<fx_pycam_Close>, METH_NOARGS, nullptr},
    {"get_device_info_string", guarded<fx_pycam_GetDeviceInfoString>, METH_VARARGS, nullptr},
    {"set_param", guarded<fx_pycam_SetParam>, METH_VARARGS, nullptr},
    {"get_param", guarded<fx_pycam_GetParam>, METH_VARARGS, nullptr},
    {"set_roi", guarded<fx_pycam_SetRoi>, METH_VARARGS, nullptr},
    {"get_roi", guarded<fx_pycam_GetRoi>, METH_NOARGS, nullptr},
    {"start_acquisition", guarded<fx_pycam_StartAcquisition>, METH_NOARGS, nullptr},
    {"stop_acquisition", guarded<fx_pycam_StopAcquisition>, METH_NOARGS, nullptr},
    {"save_settings_to_file", guarded<fx_pycam_SaveSettingsToFile>, METH_VARARGS, nullptr},
    {"load_settings_from_file", guarded<fx_pycam_LoadSettingsFromFile>, METH_VARARGS, nullptr},
    {"ask_user_capture_image", guarded<fx_pycam_AskUserCaptureImage>, METH_VARARGS, nullptr},
    {"restart_with_default_settings", guarded<fx_pycam_RestartWithDefaultSettings>, METH_NOARGS, nullptr},
    {nullptr, nullptr, 0, nullptr},
};

// No deallocation slot: an object owns nothing, and the interpreter releases the record.
static PyType_Slot TxPyCameraType_Slots[] = {
    {Py_tp_str, guardedSlot<fx_pycam_ToString>()},
    {Py_tp_getattro, guardedSlot<fx_pycam_GetAttrO>()},
    {Py_tp_methods, px_camera_meths},
    {Py_tp_init, guardedSlot<fx_pycam_Init>()},
    {Py_tp_new, reinterpret_cast<void*>(PyType_GenericNew)},
    {0, nullptr},
};

static PyType_Spec TxPyCameraType_Spec = {
    "vantrel.Camera",       // name
    sizeof(pycam_userdata), // basicsize
    0,                      // itemsize
    Py_TPFLAGS_DEFAULT,     // flags: cannot be subclassed
    TxPyCameraType_Slots,   // slots
};

// ---- registration ----

void fx_pycams_TypeReady()
{
    fx_addHelp("vantrel", nullptr, "cameraObj", px_camera_meths);
    TxPyCameraType = nullptr;
    if (fx_cam_prepareAttributes())
        TxPyCameraType =
            fx_makeType(TxPyCameraType_Spec, "fx_pycams_TypeReady(): %1", "Failed to register vantrel.CameraType");
}

int fx_pycams_TypeAdd(PyObject* module)
{
    return fx_addType(module, "Camera", TxPyCameraType);
}
