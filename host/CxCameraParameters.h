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

/// How far a written parameter goes at once.
enum class ExCommitRefreshGuiMode : int {
    Commit = 0,           ///< to the camera
    CommitAndRefresh = 1, ///< to the camera, and user interfaces are told
};

/// The parameter store of one opened camera: its parameters, region of interest, description and shading presets.
///
/// Parameters may be read and written on any thread, one after another; signals are emitted on the thread that made the
/// change. The shading presets are not guarded: one thread at a time. A store may be deleted on any thread; its slots,
/// if a derived class has any, must not be called through the event loop.
class VANTREL_HOST_EXPORT CxCameraParameters : public QObject
{
    Q_OBJECT
public:
    /// Results of a write, as they reach scripts.
    enum ExWriteStatus : int {
        Written = 0,
        Clipped = 1,  ///< written after clipping to the limits
        Unknown = -1, ///< no such parameter
        Refused = -2, ///< the value is not acceptable, or the camera does not support the parameter
        ReadOnly = -3 ///< cannot be written: read-only, only readable directly, or a limit such as "exposure:min"
    };

    /// An empty store for a camera.
    ///
    /// sensor  size in pixels; the region of interest is the whole of it at first.
    /// device  the camera behind the store; null for one without hardware, which takes every value. The device outlives
    ///         the store, or its owner calls releaseDevice() before deleting it.
    CxCameraParameters(const SxCameraInfo& info, const QSize& sensor, IxCameraDevice* device);
    ~CxCameraParameters() override;

    /// The camera is closed and its device goes: from when this returns the store does not use the device any more. A
    /// call of the device that is under way on another thread is waited for. What would go to the camera is refused
    /// from now on (Refused, false); what is stored can still be read. Any thread, any number of times.
    void releaseDevice();

    /// The camera's description.
    const SxCameraInfo& cameraInfo() const;

    /// Size of the sensor in pixels.
    QSize sensorSize() const;

    /// Lists a new parameter with that first value and returns it, for its limits and flags to be set. Null when the
    /// name is taken. Only before the store is used by others.
    CxCameraParam* addParam(const QString& name, const CxValue& value);

    /// All listed parameters in the order of their adding. Owned by the store.
    QList<CxCameraParam*> params() const;

    /// The listed parameter of that exact name, or null; with ignoreCase a name that differs in letter case is taken
    /// when none is exactly equal. Owned by the store.
    CxCameraParam* findParam(const QString& name, bool ignoreCase) const;

    /// Writes a parameter: converts the value to the parameter's type, clips it to the limits, gives it to the camera
    /// and stores it. status may be null and receives an ExWriteStatus. True when something was written.
    bool setParamDirect(const QString& name, const CxValue& value, int* status, ExCommitRefreshGuiMode mode);

    /// Reads a parameter that the store does not list from the camera (a listed one from the store). status may be null
    /// and receives an ExWriteStatus. False (value unchanged) when the camera does not have it.
    bool getParamDirect(const QString& name, CxValue& value, int* status);

    /// Stores a value that the camera itself reports, read-only parameters included, and tells user interfaces.
    /// Unknown names are ignored.
    void reportParam(const QString& name, const CxValue& value);

    /// Sets the region of interest in sensor pixels: offset, then size. A region that reaches beyond the sensor is
    /// clipped to it; one that lies outside or is empty, and one that the camera refuses, leaves the old one (false).
    ///
    /// commit   give it to the camera, else it is only stored.
    /// refresh  tell user interfaces.
    bool setROIRectParams(int x, int y, int width, int height, bool commit, bool refresh);

    /// The regions of interest in use; never empty, the first one is what scripts see.
    QList<QRect> currentROIRectParams() const;

    /// Writes the values of the writable parameters up to a visibility class, and the region of interest, to a JSON
    /// file. The file is complete or, on failure (false, and a log line), what it was before.
    bool saveParamValuesToFile(const QString& path, CxCameraParam::ExVisibility visibility) const;

    /// Reads such a file and writes its values to the camera. A file that cannot be read or is not a settings file
    /// changes nothing (false, and a log line).
    ///
    /// failed  may be null; receives the names of values that were not taken over. The others are.
    /// commit  give the values to the camera, else they are only stored.
    bool loadParamValuesFromFile(const QString& path, CxCameraParam::ExVisibility visibility, QStringList* failed,
                                 bool commit);

    /// To be called after shadingPresets was changed.
    void notifyShadingChanged();

    /// The camera's flat-field presets. Read and changed directly.
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
