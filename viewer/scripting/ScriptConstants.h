#pragma once

#include "IxScriptEnvironment.h"

/// The constants that scripts find in the script module, and the camera parameters that scripts may use.
namespace ScriptConstants {

/// One constant for each camera parameter, for example PARAM_EXPOSURE for "exposure".
QList<IxScriptEnvironment::SxApiParamDef> parameterNames();

/// One constant for each pixel type, for example DATA_FLOAT.
QList<IxScriptEnvironment::SxApiParamEnumVal> pixelTypes();

/// True for the camera parameters and the keys of a camera's device information.
bool isCameraParameter(const QString& name);

} // namespace ScriptConstants
