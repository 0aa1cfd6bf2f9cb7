#pragma once

#include "CxChainable.h"
#include "HostGlobal.h"
#include "SxPicBuf.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

/// A stage that changes the pixels of every image.
///
/// Packed 5-6-5 pixels are worked on as colours of 8 bits. The alpha channel of colour images takes no part where
/// values are changed one by one.
class VANTREL_HOST_EXPORT ImageStage : public CxChainable
{
    Q_OBJECT
public:
    void process(CxImageData& image) override;

    /// The name under which a user knows the stage.
    QString displayName() const;

    /// The settings in words, as in "gain 2, offset 0".
    virtual QString summary() const = 0;

protected:
    /// Works on interleaved pixels of a known type other than packed ones. May throw.
    virtual void processPixels(SxPicBuf& buffer) = 0;

private:
    void complainOnce(const QString& reason);

    QString m_lastComplaint;
};

/// value * gain + offset, at most the full scale. Attributes: gain (default 1), offset (0).
class VANTREL_HOST_EXPORT GainStage : public ImageStage
{
    Q_OBJECT
public:
    void readConfig(QDomElement conf) override;
    QString summary() const override;

protected:
    void processPixels(SxPicBuf& buffer) override;

private:
    double m_gain = 1.0;
    double m_offset = 0.0; // in units of the pixel values
};

/// Bright becomes dark: full scale - value; signed values change their sign.
class VANTREL_HOST_EXPORT InvertStage : public ImageStage
{
    Q_OBJECT
public:
    void readConfig(QDomElement conf) override;
    QString summary() const override;

protected:
    void processPixels(SxPicBuf& buffer) override;
};

/// Mirrors the image. Attributes: horizontal (left and right change places; default off), vertical (off).
class VANTREL_HOST_EXPORT FlipStage : public ImageStage
{
    Q_OBJECT
public:
    void process(CxImageData& image) override;
    void readConfig(QDomElement conf) override;
    QString summary() const override;

protected:
    void processPixels(SxPicBuf& buffer) override;

private:
    bool m_horizontal = false;
    bool m_vertical = false;
};

/// Smooths the image. Attributes: sigma, the standard deviation in pixels (default 1; 0 to 50, 0 does nothing).
class VANTREL_HOST_EXPORT GaussianBlurStage : public ImageStage
{
    Q_OBJECT
public:
    void readConfig(QDomElement conf) override;
    QString summary() const override;

protected:
    void processPixels(SxPicBuf& buffer) override;

private:
    double m_sigma = 1.0;
};

/// Values from the level on become full scale, those below 0. Attributes: level (default: half of the full scale).
class VANTREL_HOST_EXPORT ThresholdStage : public ImageStage
{
    Q_OBJECT
public:
    void readConfig(QDomElement conf) override;
    QString summary() const override;

protected:
    void processPixels(SxPicBuf& buffer) override;

private:
    std::optional<double> m_level; // in units of the pixel values; none: half of the full scale
};
