#pragma once

#include "CxValue.h"
#include "HostGlobal.h"

#include <QtCore/QList>
#include <QtCore/QPair>
#include <QtCore/QRect>
#include <QtCore/QString>

class CxCameraParameters;

/// The camera settings of one flat-field correction. A reference image is only valid for the exposure, gain, black
/// level and region that it was taken with. A copyable record.
class VANTREL_HOST_EXPORT CxShadingPreset
{
public:
    /// An empty preset.
    CxShadingPreset();

    /// Replaces the preset's values and region by the camera's current ones: exposure, gain and black level, as far as
    /// the camera has them, and the region of interest. Null changes nothing.
    void saveCurrentValuesFrom(CxCameraParameters* parameters);

    /// Writes the preset's values and region to the camera. Skips any that the camera refuses. Null does nothing.
    void activateValuesTo(CxCameraParameters* parameters) const;

    QString name;                          ///< scripts find a preset by its name; letter case matters
    QList<QPair<QString, CxValue>> values; ///< parameter names and their values
    QList<QRect> rects;                    ///< regions of interest, in sensor pixels
    QString reference;                     ///< where the host keeps the reference image
    QString note;                          ///< a remark for the user
    quintptr hostData = 0;                 ///< for the host's own use; copied with the preset, otherwise unused
};
