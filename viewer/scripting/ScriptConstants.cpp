#include "ScriptConstants.h"

#include "CameraParamNames.h"
#include "SxPicBuf.h"

QList<IxScriptEnvironment::SxApiParamDef> ScriptConstants::parameterNames()
{
    QList<IxScriptEnvironment::SxApiParamDef> constants;
    for (const QLatin1String name : CameraParamNames::parameters)
        constants.append({QStringLiteral("PARAM_") + QString(name).toUpper(), name});
    return constants;
}

QList<IxScriptEnvironment::SxApiParamEnumVal> ScriptConstants::pixelTypes()
{
    return {
        {QStringLiteral("DATA_INT8"), int(ExImageDataType::Int8)},
        {QStringLiteral("DATA_UINT8"), int(ExImageDataType::UInt8)},
        {QStringLiteral("DATA_INT16"), int(ExImageDataType::Int16)},
        {QStringLiteral("DATA_UINT16"), int(ExImageDataType::UInt16)},
        {QStringLiteral("DATA_INT32"), int(ExImageDataType::Int32)},
        {QStringLiteral("DATA_UINT32"), int(ExImageDataType::UInt32)},
        {QStringLiteral("DATA_INT64"), int(ExImageDataType::Int64)},
        {QStringLiteral("DATA_UINT64"), int(ExImageDataType::UInt64)},
        {QStringLiteral("DATA_FLOAT"), int(ExImageDataType::Float)},
        {QStringLiteral("DATA_DOUBLE"), int(ExImageDataType::Double)},
        {QStringLiteral("DATA_PACKED565"), int(ExImageDataType::Packed565)},
    };
}

bool ScriptConstants::isCameraParameter(const QString& name)
{
    return CameraParamNames::isParameter(name) || CameraParamNames::isDescriptionKey(name);
}
