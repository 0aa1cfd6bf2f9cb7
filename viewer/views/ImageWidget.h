#pragma once

#include <QtCore/QPointF>
#include <QtGui/QImage>
#include <QtWidgets/QWidget>

#include <memory>
#include <optional>

class CxImageData;

/// Shows one image: fitted to the widget, or at a scale that the wheel and the zoom actions change; dragging moves it.
class ImageWidget : public QWidget
{
    Q_OBJECT
public:
    explicit ImageWidget(QWidget* parent = nullptr);

    /// Shows another image, or none for null. The scale and the place stay as long as the size does.
    void setImage(std::shared_ptr<CxImageData> image);

    void zoomToFit();

    /// Shows the image at a scale (1: one screen pixel per image pixel), keeping what is in the middle there.
    void setScale(double scale);

    /// Screen pixels per image pixel.
    double scale() const;

    bool isFitted() const { return m_fitted; }

    /// The pixel at a position of the widget, or nothing outside the image.
    std::optional<QPoint> pixelAt(const QPointF& position) const;

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The mouse stands on another pixel or the pixel under it has changed; (-1, -1) when it left the image.
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
    QImage m_display; ///< made from the image when it is painted first
    bool m_displayIsStale = false;
    bool m_fitted = true;
    double m_scale = 1;
    QPointF m_origin; ///< where the image's first pixel is, in widget coordinates
    QPointF m_dragStart;
    std::optional<QPointF> m_mouse;
};
