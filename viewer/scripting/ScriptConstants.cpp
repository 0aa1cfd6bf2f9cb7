#include "ScriptConstants.h"

#include "SxPicBuf.h"

#include <QtCore/QStringList>

namespace {

const QStringList& cameraParameters()
{
    static const QStringList names = {
        QStringLiteral("exposure"),           QStringLiteral("gain"),          QStringLiteral("black_level"),
        QStringLiteral("framerate"),          QStringLiteral("auto_exposure"), QStringLiteral("trigger_mode"),
        QStringLiteral("frame_count"),        QStringLiteral("cooling"),       QStringLiteral("link_speed"),
        QStringLiteral("sensor_temperature"),
    };
    return names;
}

const QStringList& deviceKeys()
{
    static const QStringList keys = {
        QStringLiteral("device_name"), QStringLiteral("device_type"),    QStringLiteral("device_model_id"),
        QStringLiteral("device_sn"),   QStringLiteral("device_user_id"), QStringLiteral("device_inst_path"),
    };
    return keys;
}

} // namespace

QList<IxScriptEnvironment::SxApiParamDef> ScriptConstants::parameterNames()
{
    QList<IxScriptEnvironment::SxApiParamDef> constants;
    for (const QString& name : cameraParameters())
        constants.append({QStringLiteral("PARAM_") + name.toUpper(), name});
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
    return cameraParameters().contains(name) || deviceKeys().contains(name);
}
