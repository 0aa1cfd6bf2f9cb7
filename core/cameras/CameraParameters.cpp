// The parameter store: listing, reading, writing, region of interest. Settings files are in CameraSettingsFile.cpp.

#include "CxCameraParameters.h"

#include "CameraParamNames.h"
#include "CameraSettingsFile.h"
#include "IxCameraDevice.h"

#include <QtCore/QLoggingCategory>

#include <algorithm>
#include <cmath>
#include <mutex>
#include <utility>
#include <vector>

struct CxCameraParameters::Private {
    SxCameraInfo info;
    QSize sensor;
    IxCameraDevice* device = nullptr; // guarded by the mutex
    bool deviceIsReleased = false;    // guarded by the mutex
    std::vector<std::unique_ptr<CxCameraParam>> params;
    // Held during calls to the device. Recursive, because a device may report values back from within a write.
    // The thread sanitizer knows the standard library's mutex, but not Qt's.
    mutable std::recursive_mutex mutex;
    QRect region;

    ExWriteStatus write(CxCameraParam& param, const CxValue& value, bool commit);
};

namespace {

/// The name without the suffix of a limit, such as ":min"; otherwise the whole name.
QString withoutSuffix(const QString& name)
{
    for (const char* suffix : {":min", ":max", ":inc", ":info"})
        if (name.endsWith(QLatin1String(suffix)))
            return name.left(name.lastIndexOf(u':'));
    return name;
}

/// Clips a value to the parameter's limits. True if the value was outside.
bool clip(CxValue& value, const CxCameraParam& param)
{
    const auto below = [](const CxValue& a, const CxValue& b) {
        return a.type() == CxValue::Floating ? a.toFloat() < b.toFloat() : a.toInt() < b.toInt();
    };
    if (!param.minimum.isEmpty() && below(value, param.minimum))
        value = param.minimum;
    else if (!param.maximum.isEmpty() && below(param.maximum, value))
        value = param.maximum;
    else
        return false;
    return true;
}

void store(int* status, CxCameraParameters::ExWriteStatus result)
{
    if (status)
        *status = result;
}

} // namespace

CxCameraParameters::CxCameraParameters(const SxCameraInfo& info, const QSize& sensor, IxCameraDevice* device)
    : d(std::make_unique<Private>())
{
    d->info = info;
    d->sensor = sensor;
    d->device = device;
    d->region = QRect(QPoint(0, 0), sensor);
}

CxCameraParameters::~CxCameraParameters() = default;

void CxCameraParameters::releaseDevice()
{
    const std::lock_guard lock(d->mutex);
    d->device = nullptr;
    d->deviceIsReleased = true;
}

const SxCameraInfo& CxCameraParameters::cameraInfo() const
{
    return d->info;
}

QSize CxCameraParameters::sensorSize() const
{
    return d->sensor;
}

CxCameraParam* CxCameraParameters::addParam(const QString& name, const CxValue& value)
{
    if (findParam(name, false))
        return nullptr;
    return d->params.emplace_back(std::make_unique<CxCameraParam>(name, value)).get();
}

QList<CxCameraParam*> CxCameraParameters::params() const
{
    QList<CxCameraParam*> list;
    for (const auto& param : d->params)
        list.append(param.get());
    return list;
}

CxCameraParam* CxCameraParameters::findParam(const QString& name, bool ignoreCase) const
{
    // The exact name first: this is fast, and scripts ask often.
    for (const auto& param : d->params)
        if (param->name() == name)
            return param.get();
    if (ignoreCase)
        for (const auto& param : d->params)
            if (param->name().compare(name, Qt::CaseInsensitive) == 0)
                return param.get();
    return nullptr;
}

bool CxCameraParameters::setParamDirect(const QString& name, const CxValue& value, int* status,
                                        ExCommitRefreshGuiMode mode)
{
    CxCameraParam* param = findParam(name, false);
    if (!param) {
        // A name that can be read in another way is known but read-only.
        const QString base = withoutSuffix(name);
        CxValue ignored;
        const bool known = findParam(base, false) || CameraParamNames::isDescriptionKey(base) ||
                           getParamDirect(base, ignored, nullptr);
        store(status, known ? ReadOnly : Unknown);
        return false;
    }
    const ExWriteStatus result = d->write(*param, value, true);
    store(status, result);
    if (result < 0)
        return false;
    if (mode == ExCommitRefreshGuiMode::CommitAndRefresh)
        Q_EMIT paramChanged(name);
    return true;
}

bool CxCameraParameters::getParamDirect(const QString& name, CxValue& value, int* status)
{
    bool found = false;
    if (const CxCameraParam* param = findParam(name, false)) {
        found = !param->notSupported;
        if (found)
            value = param->paramValue();
    } else {
        const std::lock_guard lock(d->mutex);
        found = d->device && d->device->readParam(name, value);
    }
    store(status, found ? Written : Unknown);
    return found;
}

void CxCameraParameters::reportParam(const QString& name, const CxValue& value)
{
    CxCameraParam* param = findParam(name, false);
    if (!param)
        return;
    param->setParamValue(value);
    Q_EMIT paramChanged(name);
}

bool CxCameraParameters::setROIRectParams(int x, int y, int width, int height, bool commit, bool refresh)
{
    // In 64 bits, because sums of any two integers must fit.
    const qint64 left = std::max<qint64>(x, 0);
    const qint64 top = std::max<qint64>(y, 0);
    const qint64 right = std::min<qint64>(qint64(x) + width, d->sensor.width());
    const qint64 bottom = std::min<qint64>(qint64(y) + height, d->sensor.height());
    if (left >= right || top >= bottom)
        return false;
    const QRect region(int(left), int(top), int(right - left), int(bottom - top));
    {
        const std::lock_guard lock(d->mutex);
        if (commit && (d->deviceIsReleased || (d->device && !d->device->writeRegion(region))))
            return false;
        d->region = region;
    }
    if (refresh)
        Q_EMIT regionChanged();
    return true;
}

QList<QRect> CxCameraParameters::currentROIRectParams() const
{
    const std::lock_guard lock(d->mutex);
    return {d->region};
}

bool CxCameraParameters::saveParamValuesToFile(const QString& path, CxCameraParam::ExVisibility visibility) const
{
    CameraSettings settings;
    for (const auto& param : d->params)
        if (!param->readOnly && !param->notSupported && param->visibility <= visibility)
            settings.values.append({param->name(), param->paramValue()});
    const QRect current = currentROIRectParams().constFirst();
    settings.region = {current.x(), current.y(), current.width(), current.height()};
    return writeCameraSettings(path, d->info, settings);
}

bool CxCameraParameters::loadParamValuesFromFile(const QString& path, CxCameraParam::ExVisibility visibility,
                                                 QStringList* failed, bool commit)
{
    const std::optional<CameraSettings> settings = readCameraSettings(path);
    if (!settings)
        return false;
    for (const auto& [name, value] : settings->values) {
        CxCameraParam* param = findParam(name, false);
        const bool isAccepted = param && param->visibility <= visibility && fitsType(value, param->type()) &&
                                d->write(*param, value, commit) >= 0;
        if (isAccepted)
            Q_EMIT paramChanged(name);
        else if (failed)
            failed->append(name);
    }
    if (const auto& region = settings->region)
        setROIRectParams((*region)[0], (*region)[1], (*region)[2], (*region)[3], commit, true);
    return true;
}

void CxCameraParameters::notifyShadingChanged()
{
    Q_EMIT shadingChanged();
}

CxCameraParameters::ExWriteStatus CxCameraParameters::Private::write(CxCameraParam& param, const CxValue& value,
                                                                     bool commit)
{
    if (param.notSupported)
        return Refused;
    if (param.readOnly)
        return ReadOnly;
    CxValue wanted = value.converted(param.type());
    if (wanted.type() == CxValue::Floating && std::isnan(wanted.toFloat()))
        return Refused;
    if (wanted.type() == CxValue::String && !param.choices.isEmpty() && !param.choices.contains(wanted.toString()))
        return Refused;
    const bool clipped = clip(wanted, param);

    const std::lock_guard lock(mutex);
    if (commit && (deviceIsReleased || (device && !device->writeParam(param.name(), wanted))))
        return Refused;
    param.setParamValue(wanted);
    return clipped ? Clipped : Written;
}
