#pragma once

#include "CxValue.h"
#include "HostGlobal.h"

#include <QtCore/QList>
#include <QtCore/QPair>
#include <QtCore/QRect>
#include <QtCore/QString>

class CxCameraParameters;

/// The camera settings that belong to one flat-field correction: a reference image is only valid for the exposure,
/// gain, black level and region that it was taken with. A copyable record.
class VANTREL_HOST_EXPORT CxShadingPreset
{
public:
    /// An empty preset.
    CxShadingPreset();

    /// Copies the values that a preset keeps from the camera into the preset, in place of those it held: exposure,
    /// gain, black level as far as the camera has them, and the region of interest. Null changes nothing.
    void saveCurrentValuesFrom(CxCameraParameters* parameters);

    /// Writes the preset's values and region to the camera. What the camera refuses is left out. Null does nothing.
    void activateValuesTo(CxCameraParameters* parameters) const;

    QString name;                          ///< by which a preset is found, letter case included
    QList<QPair<QString, CxValue>> values; ///< parameter names and their values
    QList<QRect> rects;                    ///< regions of interest, in sensor pixels
    QString reference;                     ///< the host's choice: where the reference image is kept
    QString note;                          ///< the host's choice: a remark for the user
    quintptr hostData = 0;                 ///< for the host's own use; copied, never looked at
};
