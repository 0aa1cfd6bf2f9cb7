#pragma once

#include "CxValue.h"
#include "HostGlobal.h"

#include <QtCore/QRect>
#include <QtCore/QString>

/// The camera behind a parameter store (CxCameraParameters). Each kind of camera implements it.
///
/// The store calls it on the thread that uses the store, one call at a time; writeParam() and writeRegion() may report
/// values back to the store. After CxCameraParameters::releaseDevice() has returned, no call follows. An operation must
/// not wait for the thread that closes the camera, since that thread waits for the operation.
class VANTREL_HOST_EXPORT IxCameraDevice
{
public:
    virtual ~IxCameraDevice();

    /// Writes a value to the camera. The value has the parameter's type and is within its limits. False if the camera
    /// refuses it; the store then keeps the old value.
    virtual bool writeParam(const QString& name, const CxValue& value) = 0;

    /// Reads a parameter that the store does not list. False, with value unchanged, if the camera does not have it.
    virtual bool readParam(const QString& name, CxValue& value) = 0;

    /// Writes a region of interest to the camera, in sensor pixels. The region is not empty and lies within the sensor.
    /// False if the camera refuses it; the store then keeps the old region.
    virtual bool writeRegion(const QRect& region) = 0;

protected:
    IxCameraDevice() = default;
    Q_DISABLE_COPY_MOVE(IxCameraDevice)
};
