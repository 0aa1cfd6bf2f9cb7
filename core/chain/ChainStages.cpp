// The stages of a processing chain: their settings, and the preparation of pixels that all of them share.

#include "ChainStages.h"

#include "CxImageData.h"
#include "CxRTTI.h"
#include "OwnedPicBuf.h"
#include "StagePixels.h"
#include "buffers/PicBufChecks.h"

#include <QtCore/QLoggingCategory>

#include <cmath>
#include <exception>
#include <utility>

namespace {

constexpr double hugeNumber = 1e15;
constexpr double largestSigma = 50.0; // pixels; larger ones take seconds per image

/// Reads the attributes of a "conf" element.
class Settings
{
public:
    Settings(const QDomElement& conf, QString stage)
        : m_conf(conf)
        , m_stage(std::move(stage))
    {
    }

    /// A number from min to max. Nothing if the attribute is missing or, with a log line, if it is invalid.
    std::optional<double> number(const QString& name, double min, double max) const
    {
        if (!m_conf.hasAttribute(name))
            return std::nullopt;
        const QString text = m_conf.attribute(name);
        bool isNumber = false;
        const double value = text.toDouble(&isNumber);
        if (isNumber && std::isfinite(value) && value >= min && value <= max)
            return value;
        complain(name, text, QStringLiteral("a number from %1 to %2").arg(min).arg(max));
        return std::nullopt;
    }

    bool flag(const QString& name, bool defaultValue) const
    {
        if (!m_conf.hasAttribute(name))
            return defaultValue;
        const QString text = m_conf.attribute(name);
        if (text == QLatin1String("1") || text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
            return true;
        if (text == QLatin1String("0") || text.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
            return false;
        complain(name, text, QStringLiteral("1, 0, true or false"));
        return defaultValue;
    }

private:
    void complain(const QString& name, const QString& text, const QString& wanted) const
    {
        constexpr qsizetype shown = 60; // characters; an invalid value may have any length
        qWarning().noquote() << QStringLiteral("%1: %2 cannot be \"%3\", only %4; the default is used")
                                    .arg(m_stage, name, text.left(shown), wanted);
    }

    QDomElement m_conf;
    QString m_stage;
};

template<typename Stage>
void registerStage(const QString& name)
{
    CxRTTI::instance()->registerClass(Stage::staticMetaObject, name, [] { return new Stage; });
}

bool registerStages()
{
    registerStage<GainStage>(QStringLiteral("Gain"));
    registerStage<InvertStage>(QStringLiteral("Invert"));
    registerStage<FlipStage>(QStringLiteral("Flip"));
    registerStage<GaussianBlurStage>(QStringLiteral("Gaussian Blur"));
    registerStage<ThresholdStage>(QStringLiteral("Threshold"));
    return true;
}

// Registers the stages when this library is loaded. CxRTTI::instance() creates the registry on first use, so the order
// of static initialisation does not matter.
[[maybe_unused]] const bool areRegistered = registerStages();

} // namespace

// ---- all stages ----

void ImageStage::process(CxImageData& image)
{
    SxPicBuf* buffer = image.picBuf();
    if (!buffer || !buffer->data)
        return;
    if (buffer->storageFormat == ExDataStorageFormat::Planar)
        return complainOnce(QStringLiteral("planar pixels are not supported"));
    if (buffer->dataType == ExImageDataType::None || buffer->dataType > ExImageDataType::Packed565)
        return complainOnce(QStringLiteral("the pixels have no known type"));
    try {
        const bool isPacked = buffer->dataType == ExImageDataType::Packed565;
        if (isAligned(*buffer) && !isPacked)
            return processPixels(*buffer);
        OwnedPicBuf aligned;
        OwnedPicBuf unpacked;
        if (aligned.copyFrom(*buffer) && isPacked)
            unpacked = OwnedPicBuf(stage_pixels::unpack565(aligned.buffer));
        SxPicBuf& work = isPacked ? unpacked.buffer : aligned.buffer;
        if (!work.data)
            return complainOnce(QStringLiteral("there is no memory to work in"));
        processPixels(work);
        if (isPacked)
            stage_pixels::pack565(work, aligned.buffer);
        buffer->colorFilterArray = work.colorFilterArray;
        CxPicBufAPI::CopyPicBuf(*buffer, aligned.buffer, false);
    } catch (const std::exception& error) {
        complainOnce(QString::fromUtf8(error.what()));
    }
}

QString ImageStage::displayName() const
{
    return CxRTTI::instance()->customNameForClass(QString::fromLatin1(metaObject()->className()));
}

// Frames come many times a second. A line for each of them would flood the log.
void ImageStage::complainOnce(const QString& reason)
{
    if (reason == std::exchange(m_lastComplaint, reason))
        return;
    qWarning().noquote() << QStringLiteral("%1: the image is left as it is: %2").arg(displayName(), reason);
}

// ---- Gain ----

void GainStage::readConfig(QDomElement conf)
{
    const Settings settings(conf, displayName());
    m_gain = settings.number(QStringLiteral("gain"), -hugeNumber, hugeNumber).value_or(1.0);
    m_offset = settings.number(QStringLiteral("offset"), -hugeNumber, hugeNumber).value_or(0.0);
    Q_EMIT changed();
}

QString GainStage::summary() const
{
    return tr("gain %1, offset %2").arg(m_gain).arg(m_offset);
}

void GainStage::processPixels(SxPicBuf& buffer)
{
    stage_pixels::applyGain(buffer, m_gain, m_offset);
}

// ---- Invert ----

void InvertStage::readConfig(QDomElement /*conf*/)
{
    Q_EMIT changed();
}

QString InvertStage::summary() const
{
    return QString();
}

void InvertStage::processPixels(SxPicBuf& buffer)
{
    stage_pixels::invert(buffer);
}

// ---- Flip ----

void FlipStage::readConfig(QDomElement conf)
{
    const Settings settings(conf, displayName());
    m_horizontal = settings.flag(QStringLiteral("horizontal"), false);
    m_vertical = settings.flag(QStringLiteral("vertical"), false);
    Q_EMIT changed();
}

QString FlipStage::summary() const
{
    if (m_horizontal)
        return m_vertical ? tr("horizontal, vertical") : tr("horizontal");
    return m_vertical ? tr("vertical") : tr("neither way");
}

void FlipStage::process(CxImageData& image)
{
    ImageStage::process(image);
    // Keep the metadata in step with the pixels.
    if (image.picBuf() && image.imageMetadata())
        image.imageMetadata()->colorFilterArray = image.picBuf()->colorFilterArray;
}

void FlipStage::processPixels(SxPicBuf& buffer)
{
    stage_pixels::flip(buffer, m_horizontal, m_vertical);
}

// ---- Gaussian Blur ----

void GaussianBlurStage::readConfig(QDomElement conf)
{
    m_sigma = Settings(conf, displayName()).number(QStringLiteral("sigma"), 0.0, largestSigma).value_or(1.0);
    Q_EMIT changed();
}

QString GaussianBlurStage::summary() const
{
    return tr("sigma %1").arg(m_sigma);
}

void GaussianBlurStage::processPixels(SxPicBuf& buffer)
{
    stage_pixels::blur(buffer, m_sigma);
}

// ---- Threshold ----

void ThresholdStage::readConfig(QDomElement conf)
{
    m_level = Settings(conf, displayName()).number(QStringLiteral("level"), -hugeNumber, hugeNumber);
    Q_EMIT changed();
}

QString ThresholdStage::summary() const
{
    return m_level ? tr("level %1").arg(*m_level) : tr("level at half of the full scale");
}

void ThresholdStage::processPixels(SxPicBuf& buffer)
{
    stage_pixels::threshold(buffer, m_level);
}
