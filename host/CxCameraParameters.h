#pragma once

#include "CxCameraParam.h"
#include "CxShadingPreset.h"
#include "HostGlobal.h"
#include "SxCameraInfo.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QRect>
#include <QtCore/QSize>
#include <QtCore/QStringList>

#include <memory>

class IxCameraDevice;

/// What happens when a parameter is written.
enum class ExCommitRefreshGuiMode : int {
    Commit = 0,           ///< the camera gets the value
    CommitAndRefresh = 1, ///< the camera gets the value, and user interfaces are notified
};

/// The parameter store of one open camera: its parameters, region of interest, description and shading presets.
///
/// Any thread may read and write parameters and the region; calls to the camera are made one at a time. Signals are
/// emitted on the thread that makes the change. The shading presets are not locked: use them on one thread at a time.
/// Any thread may delete a store. If a derived class has slots, they must not be called through the event loop.
class VANTREL_HOST_EXPORT CxCameraParameters : public QObject
{
    Q_OBJECT
public:
    /// Result of a write, as scripts get it.
    enum ExWriteStatus : int {
        Written = 0,
        Clipped = 1,  ///< written, but clipped to the limits
        Unknown = -1, ///< no such parameter
        Refused = -2, ///< the value is not acceptable, or the camera does not support the parameter
        ReadOnly = -3 ///< can only be read: a read-only or unlisted parameter, "device_name", "exposure:min" and so on
    };

    /// A store without parameters.
    ///
    /// sensor  size in pixels; at first the region of interest is the whole sensor.
    /// device  the camera behind the store, or null if there is no camera to write to. The device must
    ///         outlive the store, or its owner calls releaseDevice() before deleting the device.
    CxCameraParameters(const SxCameraInfo& info, const QSize& sensor, IxCameraDevice* device);
    ~CxCameraParameters() override;

    /// Detaches the store from its device, for a camera that is being closed. Waits for a call to the device on another
    /// thread; after the return the store never uses the device again. Later writes to the camera fail (Refused,
    /// false). Stored values can still be read. May be called on any thread and more than once.
    void releaseDevice();

    /// The camera's description.
    const SxCameraInfo& cameraInfo() const;

    /// Size of the sensor in pixels.
    QSize sensorSize() const;

    /// Adds a parameter with its first value. Returns it so that the caller can set its limits and flags; null if the
    /// name is taken. Owned by the store. Call this only before the store is in use.
    CxCameraParam* addParam(const QString& name, const CxValue& value);

    /// All listed parameters in the order in which they were added. Owned by the store.
    QList<CxCameraParam*> params() const;

    /// The listed parameter with this exact name, or null. With ignoreCase, a name that differs only in letter case
    /// will do if there is no exact match. Owned by the store.
    CxCameraParam* findParam(const QString& name, bool ignoreCase) const;

    /// Writes a listed parameter: converts the value to the parameter's type, clips it to the limits, gives it to the
    /// camera and stores it. True if a value was written. status receives an ExWriteStatus; it may be null.
    bool setParamDirect(const QString& name, const CxValue& value, int* status, ExCommitRefreshGuiMode mode);

    /// Reads a parameter: a listed one from the store, any other from the camera. False if the camera does not have the
    /// parameter; value is then unchanged. status receives Written or Unknown; it may be null.
    bool getParamDirect(const QString& name, CxValue& value, int* status);

    /// Stores a value that the camera itself reports, and notifies user interfaces. Works for read-only parameters too.
    /// Ignores unknown names.
    void reportParam(const QString& name, const CxValue& value);

    /// Sets the region of interest in sensor pixels: offset, then size. Clips the region to the sensor. False, and the
    /// old region stays, if nothing is left or the camera refuses the region.
    ///
    /// commit   whether the camera gets the region; otherwise it is only stored.
    /// refresh  whether user interfaces are notified.
    bool setROIRectParams(int x, int y, int width, int height, bool commit, bool refresh);

    /// The regions of interest in use, in sensor pixels. Never empty; scripts see the first one.
    QList<QRect> currentROIRectParams() const;

    /// Saves the region of interest and the values of all writable parameters up to a visibility class to a JSON file.
    /// On failure returns false, logs one line and leaves an existing file unchanged.
    bool saveParamValuesToFile(const QString& path, CxCameraParam::ExVisibility visibility) const;

    /// Loads a file that saveParamValuesToFile() wrote, and notifies user interfaces. If the file cannot be read or is
    /// not a settings file, returns false, logs one line and changes nothing.
    ///
    /// visibility  the highest class of parameters to set.
    /// failed      receives the names of the values that were not set; may be null. Does not report the region.
    /// commit      whether the camera gets the values; otherwise they are only stored.
    bool loadParamValuesFromFile(const QString& path, CxCameraParam::ExVisibility visibility, QStringList* failed,
                                 bool commit);

    /// Emits shadingChanged(). Call this after a change to shadingPresets.
    void notifyShadingChanged();

    /// The camera's flat-field presets. Callers read and change the list directly.
    QList<CxShadingPreset> shadingPresets;

Q_SIGNALS:
    void paramChanged(const QString& name);
    void regionChanged();
    void shadingChanged();

private:
    Q_DISABLE_COPY_MOVE(CxCameraParameters)

    struct Private;
    const std::unique_ptr<Private> d;
};
