#pragma once

#include <QtCore/QPointF>
#include <QtGui/QImage>
#include <QtWidgets/QWidget>

#include <memory>
#include <optional>

class CxImageData;

/// Shows one image, fitted to the widget or at a chosen scale. The wheel changes the scale, dragging moves the image,
/// and a double click switches between fitted and scale 1.
class ImageWidget : public QWidget
{
    Q_OBJECT
public:
    explicit ImageWidget(QWidget* parent = nullptr);

    /// Shows another image; null shows none. A fitted image stays fitted; otherwise the scale stays, and so does the
    /// position as far as a new size allows.
    void setImage(std::shared_ptr<CxImageData> image);

    void zoomToFit();

    /// Shows the image at a scale (1: one screen pixel per image pixel, limits: 1/64 and 64) and keeps the centre of
    /// the widget in place.
    void setScale(double scale);

    /// Screen pixels per image pixel.
    double scale() const;

    bool isFitted() const { return m_fitted; }

    /// The image's pixel at a position in the widget, or nothing outside the image.
    std::optional<QPoint> pixelAt(const QPointF& position) const;

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The mouse has moved, or the image under it has changed. pixel is (-1, -1) outside the image.
    void pixelHovered(const QPoint& pixel);

    /// The scale has changed.
    void scaleChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    QSize imageSize() const;
    QRectF target() const;
    double fittingScale() const;
    void setScaleAround(double scale, const QPointF& fixed);
    void keepInSight();
    void hover(const QPointF& position);

    std::shared_ptr<CxImageData> m_image;
    QImage m_display; ///< made from the image at its first painting
    bool m_displayIsStale = false;
    bool m_fitted = true;
    double m_scale = 1;
    QPointF m_origin; ///< position of the image's first pixel, in widget coordinates
    QPointF m_dragStart;
    std::optional<QPointF> m_mouse;
};
