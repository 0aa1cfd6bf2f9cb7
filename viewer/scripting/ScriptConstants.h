#pragma once

#include "IxScriptEnvironment.h"

/// The names that scripts find as constants, and the camera parameters that they may use.
namespace ScriptConstants {

/// One constant for each camera parameter, as PARAM_EXPOSURE for "exposure".
QList<IxScriptEnvironment::SxApiParamDef> parameterNames();

/// One constant for each pixel type, as DATA_FLOAT.
QList<IxScriptEnvironment::SxApiParamEnumVal> pixelTypes();

/// True for the camera parameters and the keys of a camera's device information.
bool isCameraParameter(const QString& name);

} // namespace ScriptConstants
