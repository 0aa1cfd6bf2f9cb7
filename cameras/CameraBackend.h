#pragma once

#include "IxCameraDevice.h"

#include <chrono>
#include <memory>
#include <optional>

class CxCameraParameters;
class CxImageData;

/// A camera as the viewer drives it; each kind of camera implements this class.
///
/// The parameter store writes parameters and the region of interest through IxCameraDevice, on the thread that uses the
/// store. Everything below is called on the GUI thread.
class CameraBackend : public IxCameraDevice
{
public:
    ~CameraBackend() override = default;

    /// Opens the camera with its default settings. False if the camera cannot be reached.
    virtual bool open() = 0;

    /// Ends the acquisition and closes the camera. Scripts on other threads may keep its parameter store alive. By then
    /// ViewerCamera has released the store's device, so the store calls this object no more.
    virtual void close() = 0;

    /// The parameter store of the open camera; null while the camera is closed. Each opening makes a new store.
    virtual std::shared_ptr<CxCameraParameters> parameters() const = 0;

    /// Starts the acquisition. True if it is running afterwards, also if it was running before.
    virtual bool start() = 0;

    virtual void stop() = 0;

    virtual bool isRunning() const = 0;

    /// Time until the next frame is due; zero if a frame is due now. Nothing if no frame can come with the current
    /// settings.
    virtual std::optional<std::chrono::microseconds> timeToNextFrame() const = 0;

    /// The frame that is due, with its metadata. Null if no frame is due or there is not enough memory.
    virtual std::unique_ptr<CxImageData> nextFrame() = 0;
};
