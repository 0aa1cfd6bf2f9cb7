// The region of interest of a camera.

#include "CameraObject.h"
#include "CxCameraParameters.h"

#include <QtCore/QRect>

PyObject* fx_pycam_SetRoi(PyObject* self, PyObject* args)
{
    CxCameraParameters* parameters = fx_cam_parameters(self);
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    if (!parameters || !PyArg_ParseTuple(args, "iiii", &x, &y, &width, &height))
        return nullptr;
    parameters->setROIRectParams(x, y, width, height, true, true);
    return fx_none();
}

PyObject* fx_pycam_GetRoi(PyObject* self, PyObject* /*args*/)
{
    const CxCameraParameters* parameters = fx_cam_parameters(self);
    if (!parameters)
        return nullptr;
    const QList<QRect> regions = parameters->currentROIRectParams();
    if (regions.isEmpty())
        return fx_raise("Camera has no region of interest");
    const QRect& region = regions.first();
    return Py_BuildValue("iiii", region.left(), region.top(), region.right() - region.left() + 1,
                         region.bottom() - region.top() + 1);
}
