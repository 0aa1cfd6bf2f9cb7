#include "SimulatedCamera.h"

#include "CameraParamNames.h"
#include "CxCameraParameters.h"
#include "CxImageData.h"
#include "OwnedPicBuf.h"
#include "zuCore.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using std::chrono::microseconds;

namespace Names = CameraParamNames;

constexpr int shortestExposure = 10;
constexpr int longestExposure = 1000000;
constexpr int exposureStep = 10;

/// The number of late frames that the camera catches up with.
constexpr int maxLateFrames = 8;

void addNumber(CxCameraParameters& store, const QString& name, const std::array<CxValue, 4>& defaultMinMaxStep)
{
    CxCameraParam* param = store.addParam(name, defaultMinMaxStep[0]);
    param->minimum = defaultMinMaxStep[1];
    param->maximum = defaultMinMaxStep[2];
    param->increment = defaultMinMaxStep[3];
}

std::shared_ptr<CxCameraParameters> defaultParameters(const SimulatedSensor& sensor, IxCameraDevice* device)
{
    const auto integer = [](int value) { return CxValue::fromInt(value); };
    const auto floating = [](float value) { return CxValue::fromFloat(value); };
    auto store = std::make_shared<CxCameraParameters>(sensor.info, sensor.size, device);
    addNumber(*store, Names::exposure,
              {integer(10000), integer(shortestExposure), integer(longestExposure), integer(exposureStep)});
    addNumber(*store, Names::gain, {floating(0.0F), floating(0.0F), floating(24.0F), floating(0.1F)});
    addNumber(*store, Names::blackLevel, {integer(0), integer(0), integer(255), integer(1)});
    addNumber(*store, Names::frameRate, {floating(30.0F), floating(1.0F), floating(120.0F), floating(0.5F)});
    store->addParam(Names::autoExposure, CxValue::fromBool(false));
    store->addParam(Names::triggerMode, CxValue::fromString(QStringLiteral("off")))->choices = {
        QStringLiteral("off"), QStringLiteral("software"), QStringLiteral("line0")};
    store->addParam(Names::frameCount, CxValue::fromInt(0))->readOnly = true;
    store->addParam(Names::cooling, CxValue::fromBool(false))->notSupported = true;
    return store;
}

CxValue valueOf(const CxCameraParameters& store, const QString& name)
{
    return store.findParam(name, false)->paramValue();
}

} // namespace

SimulatedCamera::SimulatedCamera(const SimulatedSensor& sensor, Clock clock)
    : m_sensor(sensor)
    , m_clock(std::move(clock))
{
}

SimulatedCamera::~SimulatedCamera() = default;

bool SimulatedCamera::open()
{
    if (m_parameters)
        return true;
    m_parameters = defaultParameters(m_sensor, this);
    m_framesSinceOpening = 0;
    return true;
}

void SimulatedCamera::close()
{
    if (!m_parameters)
        return;
    stop();
    m_parameters.reset();
}

bool SimulatedCamera::start()
{
    if (!m_parameters)
        return false;
    if (m_running)
        return true;
    m_running = true;
    m_framesSinceStart = 0;
    m_cameraTime = microseconds(0);
    m_lastDue = m_clock();
    m_parameters->reportParam(Names::frameCount, CxValue::fromInt(0));
    return true;
}

void SimulatedCamera::stop()
{
    m_running = false;
}

std::optional<microseconds> SimulatedCamera::timeToNextFrame() const
{
    // In the trigger modes no frame comes, since nothing triggers a simulated camera.
    if (!m_running || valueOf(*m_parameters, Names::triggerMode).toString() != u"off")
        return std::nullopt;
    return std::max(m_lastDue + period() - m_clock(), microseconds(0));
}

std::unique_ptr<CxImageData> SimulatedCamera::nextFrame()
{
    if (timeToNextFrame() != microseconds(0))
        return nullptr;
    adjustExposure();
    const SimulatedScene::Settings now = settings();
    OwnedPicBuf pixels;
    if (!CxPicBufAPI::AllocPicBufFromHeap(pixels.buffer, frameInfo(now), true, 0))
        return nullptr;
    SxPicBuf& buffer = pixels.buffer;

    // Catch up with a short delay. After a long one, restart the clock: a long burst of frames would follow otherwise.
    m_lastDue = std::max(m_lastDue + period(), m_clock() - maxLateFrames * period());
    m_cameraTime += period();
    buffer.acqFrameNumber = ++m_framesSinceOpening;
    buffer.frameNumber = ++m_framesSinceStart;
    buffer.timeStamp = std::uint64_t(m_cameraTime.count());
    if (!m_scene)
        m_scene = std::make_unique<SimulatedScene>(m_sensor);
    m_scene->render(buffer, m_framesSinceStart, now);

    auto frame = std::make_unique<CxImageData>();
    SxImageMetadata metadata;
    metadata.transportFormat = zuCore_GetZuImgFormatForPicBufInfo(buffer);
    metadata.exposureTimeUs = now.exposureUs;
    metadata.gainDb = now.gainDb;
    frame->setPicBuf(pixels.release());
    frame->setImageMetadata(&metadata);
    m_parameters->reportParam(Names::frameCount, CxValue::fromInt(m_framesSinceStart));
    return frame;
}

bool SimulatedCamera::writeParam(const QString& /*name*/, const CxValue& /*value*/)
{
    return true; // rendering a frame reads the values from the store
}

bool SimulatedCamera::readParam(const QString& name, CxValue& value)
{
    if (name == Names::sensorTemperature)
        value = CxValue::fromFloat(35.5F);
    else if (name == Names::linkSpeed)
        value = CxValue::fromInt(5000);
    else
        return false;
    return true;
}

bool SimulatedCamera::writeRegion(const QRect& /*region*/)
{
    return true; // rendering a frame reads the values from the store
}

microseconds SimulatedCamera::steadyClock()
{
    return std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

microseconds SimulatedCamera::period() const
{
    return microseconds(std::lround(1e6F / valueOf(*m_parameters, Names::frameRate).toFloat()));
}

void SimulatedCamera::adjustExposure()
{
    if (!valueOf(*m_parameters, Names::autoExposure).toBool())
        return;
    if (!m_scene)
        m_scene = std::make_unique<SimulatedScene>(m_sensor);
    const double wanted = m_scene->exposureForHalfScale(valueOf(*m_parameters, Names::gain).toFloat());
    const int rounded = int(std::lround(std::min(wanted, double(longestExposure)) / exposureStep)) * exposureStep;
    const CxValue exposure = CxValue::fromInt(std::max(rounded, shortestExposure));
    if (!(valueOf(*m_parameters, Names::exposure) == exposure))
        m_parameters->reportParam(Names::exposure, exposure);
}

SimulatedScene::Settings SimulatedCamera::settings() const
{
    SimulatedScene::Settings now;
    now.exposureUs = valueOf(*m_parameters, Names::exposure).toInt();
    now.gainDb = valueOf(*m_parameters, Names::gain).toFloat();
    now.blackLevel = valueOf(*m_parameters, Names::blackLevel).toInt();
    now.region = m_parameters->currentROIRectParams().constFirst();
    return now;
}

SxPicBufInfo SimulatedCamera::frameInfo(const SimulatedScene::Settings& settings) const
{
    SxPicBufInfo info;
    info.width = std::uint32_t(settings.region.width());
    info.height = std::uint32_t(settings.region.height());
    info.channels = m_sensor.channels;
    info.bpc = m_sensor.bpc;
    info.blackLevel = std::uint32_t(settings.blackLevel);
    info.dataType = m_sensor.dataType;
    info.storageFormat = ExDataStorageFormat::Interleaved;
    info.isColor = SxPicBufInfo::isColorChannelCount(m_sensor.channels);
    info.saturation = SxPicBufInfo::isFloating(m_sensor.dataType) ? m_sensor.fullScale : 0.0F;
    return info;
}
