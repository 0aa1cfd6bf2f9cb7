#pragma once

#include "CxValue.h"
#include "HostGlobal.h"

#include <QtCore/QRect>
#include <QtCore/QString>

/// What a parameter store (CxCameraParameters) asks of the camera behind it. Implemented by whoever brings a camera.
///
/// Called on the thread that uses the store, by one thread at a time, and not any more after
/// CxCameraParameters::releaseDevice() has returned. No operation may wait for the thread that closes the camera: that
/// thread waits for the operation.
class VANTREL_HOST_EXPORT IxCameraDevice
{
public:
    virtual ~IxCameraDevice();

    /// Gives a value to the camera: of the parameter's type and within its limits. False when the camera refuses it;
    /// the store then keeps the old one.
    virtual bool writeParam(const QString& name, const CxValue& value) = 0;

    /// Reads a value that the store does not list. False (value unchanged) when the camera has none of that name.
    virtual bool readParam(const QString& name, CxValue& value) = 0;

    /// Gives a region of interest to the camera: never empty and within the sensor. False when the camera refuses it.
    virtual bool writeRegion(const QRect& region) = 0;

protected:
    IxCameraDevice() = default;
    Q_DISABLE_COPY_MOVE(IxCameraDevice)
};
