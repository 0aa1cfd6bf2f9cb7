#pragma once

#include "CxCameraParameters.h"
#include "IxCameraDevice.h"

#include <memory>

/// A device that records what is written to it, or refuses everything while `refusing` is set.
class FakeCameraDevice : public IxCameraDevice
{
public:
    bool writeParam(const QString& name, const CxValue& value) override
    {
        if (refusing)
            return false;
        written.append({name, value});
        return true;
    }

    bool readParam(const QString& name, CxValue& value) override
    {
        if (name != u"sensor_temperature")
            return false;
        value = CxValue::fromFloat(35.5F);
        return true;
    }

    bool writeRegion(const QRect& region) override
    {
        if (refusing)
            return false;
        regions.append(region);
        return true;
    }

    bool refusing = false;
    QList<QPair<QString, CxValue>> written;
    QList<QRect> regions;
};

/// A store for a sensor of 640 x 480 with one parameter of each kind.
inline std::unique_ptr<CxCameraParameters> makeFakeParameters(IxCameraDevice* device,
                                                              const QString& serialNumber = QStringLiteral("FAKE01"))
{
    SxCameraInfo info;
    info.deviceName = QStringLiteral("Fake");
    info.deviceType = QStringLiteral("test");
    info.modelId = 7;
    info.serialNumber = serialNumber;
    info.userId = QStringLiteral("bench");
    info.instancePath = QStringLiteral("fake://0");
    auto store = std::make_unique<CxCameraParameters>(info, QSize(640, 480), device);

    CxCameraParam* exposure = store->addParam(QStringLiteral("exposure"), CxValue::fromInt(10000));
    exposure->minimum = CxValue::fromInt(10);
    exposure->maximum = CxValue::fromInt(1000000);
    exposure->increment = CxValue::fromInt(10);
    CxCameraParam* gain = store->addParam(QStringLiteral("gain"), CxValue::fromFloat(0.0F));
    gain->minimum = CxValue::fromFloat(0.0F);
    gain->maximum = CxValue::fromFloat(24.0F);
    gain->increment = CxValue::fromFloat(0.1F);
    gain->visibility = CxCameraParam::Advanced;
    store->addParam(QStringLiteral("auto_exposure"), CxValue::fromBool(false));
    CxCameraParam* trigger =
        store->addParam(QStringLiteral("trigger_mode"), CxValue::fromString(QStringLiteral("off")));
    trigger->choices = {QStringLiteral("off"), QStringLiteral("software")};
    store->addParam(QStringLiteral("frame_count"), CxValue::fromInt(0))->readOnly = true;
    store->addParam(QStringLiteral("cooling"), CxValue::fromBool(false))->notSupported = true;
    return store;
}
