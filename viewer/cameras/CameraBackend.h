#pragma once

#include "IxCameraDevice.h"

#include <chrono>
#include <memory>
#include <optional>

class CxCameraParameters;
class CxImageData;

/// What brings a kind of camera into the viewer: one object for each camera.
///
/// Parameters and the region of interest arrive through the operations of IxCameraDevice, on the thread that writes
/// them; everything below is called on the GUI thread.
class CameraBackend : public IxCameraDevice
{
public:
    ~CameraBackend() override;

    /// Opens the camera with its default settings. False when it cannot be reached.
    virtual bool open() = 0;

    /// Ends the acquisition and closes the camera. Its parameter store may live on, for scripts on other threads that
    /// are just using it. OpenedCamera has then released the store's device: nothing comes from there any more.
    virtual void close() = 0;

    /// The parameter store of the opened camera, a new one with each opening; null while closed.
    virtual std::shared_ptr<CxCameraParameters> parameters() const = 0;

    /// Starts the acquisition; true when it runs, also when it ran already.
    virtual bool start() = 0;

    virtual void stop() = 0;

    virtual bool isRunning() const = 0;

    /// Time until the next frame is due, zero when it is; nothing when no frame can come as things stand.
    virtual std::optional<std::chrono::microseconds> timeToNextFrame() const = 0;

    /// The frame that is due, with its metadata, or null when none is.
    virtual std::unique_ptr<CxImageData> nextFrame() = 0;
};
