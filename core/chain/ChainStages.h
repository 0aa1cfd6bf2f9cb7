#pragma once

#include "CxChainable.h"
#include "HostGlobal.h"
#include "SxPicBuf.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

/// A stage that changes the pixels of every image.
///
/// Packed 5-6-5 pixels are converted to 8-bit colours for the work. Stages that change values one by one leave the
/// alpha channel of colour images alone.
class VANTREL_HOST_EXPORT ImageStage : public CxChainable
{
    Q_OBJECT
public:
    void process(CxImageData& image) override;

    /// The name of the stage as users see it.
    QString displayName() const;

    /// The settings in words, as in "gain 2, offset 0".
    virtual QString summary() const = 0;

protected:
    /// Changes the pixels in place. They are interleaved and of a known type other than packed ones. May throw.
    virtual void processPixels(SxPicBuf& buffer) = 0;

private:
    void complainOnce(const QString& reason);

    QString m_lastComplaint;
};

/// value * gain + offset, at most full scale. Attributes: gain (default 1), offset (default 0).
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

/// Turns bright into dark: full scale - value. Signed values change their sign.
class VANTREL_HOST_EXPORT InvertStage : public ImageStage
{
    Q_OBJECT
public:
    void readConfig(QDomElement conf) override;
    QString summary() const override;

protected:
    void processPixels(SxPicBuf& buffer) override;
};

/// Mirrors the image. Attributes: horizontal (swaps left and right; default off), vertical (default off).
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

/// Smooths the image. Attributes: sigma, the standard deviation in pixels (0 to 50, default 1; 0 changes nothing).
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

/// Sets values at or above the level to full scale, all others to 0. Attributes: level (default half of full scale).
class VANTREL_HOST_EXPORT ThresholdStage : public ImageStage
{
    Q_OBJECT
public:
    void readConfig(QDomElement conf) override;
    QString summary() const override;

protected:
    void processPixels(SxPicBuf& buffer) override;

private:
    std::optional<double> m_level; // in units of the pixel values; if empty, half of full scale
};
