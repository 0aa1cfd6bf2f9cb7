#include "SimulatedSensor.h"

#include <array>

namespace {

SimulatedSensor sensor(int number, const QString& name, const QString& serialNumber, const QString& userId,
                       const QSize& size)
{
    SimulatedSensor result;
    result.info.deviceName = name;
    result.info.deviceType = QStringLiteral("simulated");
    result.info.modelId = 1001 + number;
    result.info.serialNumber = serialNumber;
    result.info.userId = userId;
    result.info.instancePath = QStringLiteral("sim://%1").arg(number);
    result.size = size;
    result.seed = std::uint64_t(number) + 1;
    return result;
}

SimulatedSensor colour8()
{
    SimulatedSensor result =
        sensor(0, QStringLiteral("SimCam C8"), QStringLiteral("SIM0001A"), QStringLiteral("left"), {640, 480});
    result.channels = 3;
    return result;
}

SimulatedSensor mono12()
{
    SimulatedSensor result =
        sensor(1, QStringLiteral("SimCam M12"), QStringLiteral("SIM0002B"), QStringLiteral("right"), {1280, 960});
    result.dataType = ExImageDataType::UInt16;
    result.bpc = 12;
    result.fullScale = 4095.0F;
    result.fullWell = 16380.0F;
    return result;
}

SimulatedSensor mono8()
{
    return sensor(2, QStringLiteral("SimCam M8"), QStringLiteral("SIM0003C"), QStringLiteral("Left"), {320, 240});
}

SimulatedSensor float32()
{
    SimulatedSensor result =
        sensor(3, QStringLiteral("SimCam F32"), QStringLiteral("SIM0004D"), QStringLiteral("depth"), {160, 120});
    result.dataType = ExImageDataType::Float;
    result.bpc = 32;
    result.fullScale = 65535.0F;
    result.fullWell = 32767.5F;
    return result;
}

} // namespace

SimulatedSensor simulatedSensor(int number)
{
    static const std::array<SimulatedSensor (*)(), simulatedSensorCount> models = {&colour8, &mono12, &mono8, &float32};
    return models.at(std::size_t(number))();
}
