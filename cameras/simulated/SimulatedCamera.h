#pragma once

#include "CameraBackend.h"
#include "SimulatedScene.h"
#include "SimulatedSensor.h"

#include <functional>

/// A camera without hardware, which sees a moving scene at the set frame rate.
///
/// No frame is lost if the caller fetches frames too late. A few late frames are due at once, later ones are delayed,
/// and the frame numbers have no gap.
class SimulatedCamera : public CameraBackend
{
public:
    /// Returns the time since some fixed moment.
    using Clock = std::function<std::chrono::microseconds()>;

    explicit SimulatedCamera(const SimulatedSensor& sensor, Clock clock = steadyClock);
    ~SimulatedCamera() override;

    bool open() override;
    void close() override;
    std::shared_ptr<CxCameraParameters> parameters() const override { return m_parameters; }
    bool start() override;
    void stop() override;
    bool isRunning() const override { return m_running; }
    std::optional<std::chrono::microseconds> timeToNextFrame() const override;
    std::unique_ptr<CxImageData> nextFrame() override;

    bool writeParam(const QString& name, const CxValue& value) override;
    bool readParam(const QString& name, CxValue& value) override;
    bool writeRegion(const QRect& region) override;

    static std::chrono::microseconds steadyClock();

private:
    std::chrono::microseconds period() const;
    void adjustExposure();
    SimulatedScene::Settings settings() const;
    SxPicBufInfo frameInfo(const SimulatedScene::Settings& settings) const;

    SimulatedSensor m_sensor;
    Clock m_clock;
    std::shared_ptr<CxCameraParameters> m_parameters;
    std::unique_ptr<SimulatedScene> m_scene; ///< created for the first frame
    bool m_running = false;
    std::int32_t m_framesSinceOpening = 0;
    std::int32_t m_framesSinceStart = 0;
    std::chrono::microseconds m_cameraTime{0}; ///< time of the latest frame since the start
    std::chrono::microseconds m_lastDue{0};    ///< when the latest frame was due
};
