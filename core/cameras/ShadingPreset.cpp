#include "CxShadingPreset.h"

#include "CameraParamNames.h"
#include "CxCameraParameters.h"

#include <array>

namespace {
// The parameters that a reference image depends on.
constexpr std::array savedParams = {CameraParamNames::exposure, CameraParamNames::gain, CameraParamNames::blackLevel};
} // namespace

CxShadingPreset::CxShadingPreset() = default;

void CxShadingPreset::saveCurrentValuesFrom(CxCameraParameters* parameters)
{
    if (!parameters)
        return;
    values.clear();
    for (const QLatin1String param : savedParams)
        if (const CxCameraParam* found = parameters->findParam(param, false); found && !found->notSupported)
            values.append({param, found->paramValue()});
    rects = parameters->currentROIRectParams();
}

void CxShadingPreset::activateValuesTo(CxCameraParameters* parameters) const
{
    if (!parameters)
        return;
    for (const auto& [param, value] : values)
        parameters->setParamDirect(param, value, nullptr, ExCommitRefreshGuiMode::CommitAndRefresh);
    if (!rects.isEmpty()) {
        const QRect& region = rects.first();
        parameters->setROIRectParams(region.x(), region.y(), region.width(), region.height(), true, true);
    }
}
