#include "ImageWidget.h"

#include "CxImageData.h"
#include "DisplayImage.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

namespace {
constexpr double smallestScale = 1.0 / 64;
constexpr double largestScale = 64;
constexpr double wheelStep = 1.25;
constexpr QColor surround(56, 56, 60); // darker than most images
} // namespace

ImageWidget::ImageWidget(QWidget* parent)
    : QWidget(parent)
{
    setMouseTracking(true);
    setMinimumSize(32, 32);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void ImageWidget::setImage(std::shared_ptr<CxImageData> image)
{
    const QSize before = imageSize();
    m_image = std::move(image);
    m_displayIsStale = true;
    m_display = QImage();
    if (imageSize() != before) {
        updateGeometry();
        if (!m_fitted)
            keepInSight();
        Q_EMIT scaleChanged();
    }
    if (m_mouse)
        hover(*m_mouse);
    update();
}

void ImageWidget::zoomToFit()
{
    m_fitted = true;
    update();
    Q_EMIT scaleChanged();
}

void ImageWidget::setScale(double scale)
{
    setScaleAround(scale, QRectF(rect()).center());
}

double ImageWidget::scale() const
{
    return m_fitted ? fittingScale() : m_scale;
}

std::optional<QPoint> ImageWidget::pixelAt(const QPointF& position) const
{
    const QRectF area = target();
    if (area.isEmpty() || !area.contains(position))
        return {};
    const QPointF inside = (position - area.topLeft()) / scale();
    const QPoint pixel(int(std::floor(inside.x())), int(std::floor(inside.y())));
    return QRect(QPoint(), imageSize()).contains(pixel) ? std::optional(pixel) : std::nullopt;
}

QSize ImageWidget::sizeHint() const
{
    const QSize size = imageSize();
    return size.isEmpty() ? QSize(320, 240) : size.boundedTo(QSize(640, 480)).expandedTo(QSize(160, 120));
}

void ImageWidget::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), surround);
    if (m_displayIsStale) {
        const SxPicBuf* buffer = m_image ? m_image->picBuf() : nullptr;
        m_display = buffer ? displayImage(*buffer) : QImage();
        m_displayIsStale = false;
    }
    if (m_display.isNull())
        return;
    // Enlarged pixels keep sharp edges, so that the user can tell them apart.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, scale() < 1);
    painter.drawImage(target(), m_display);
}

void ImageWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (m_fitted)
        Q_EMIT scaleChanged();
    else
        keepInSight();
}

void ImageWidget::wheelEvent(QWheelEvent* event)
{
    const double steps = event->angleDelta().y() / 120.0;
    if (steps != 0)
        setScaleAround(scale() * std::pow(wheelStep, steps), event->position());
    event->accept();
}

void ImageWidget::mousePressEvent(QMouseEvent* event)
{
    m_dragStart = event->position();
    QWidget::mousePressEvent(event);
}

void ImageWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() & Qt::LeftButton && !m_fitted) {
        m_origin += event->position() - m_dragStart;
        m_dragStart = event->position();
        keepInSight();
        update();
    }
    m_mouse = event->position();
    hover(event->position());
}

void ImageWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (m_fitted)
        setScaleAround(1, event->position());
    else
        zoomToFit();
}

void ImageWidget::leaveEvent(QEvent* event)
{
    m_mouse.reset();
    Q_EMIT pixelHovered(QPoint(-1, -1));
    QWidget::leaveEvent(event);
}

QSize ImageWidget::imageSize() const
{
    const SxPicBuf* buffer = m_image ? m_image->picBuf() : nullptr;
    return buffer && buffer->data ? QSize(int(buffer->width), int(buffer->height)) : QSize();
}

QRectF ImageWidget::target() const
{
    const QSizeF size = QSizeF(imageSize()) * scale();
    if (size.isEmpty())
        return {};
    if (!m_fitted)
        return {m_origin, size};
    return {QPointF((width() - size.width()) / 2, (height() - size.height()) / 2), size};
}

double ImageWidget::fittingScale() const
{
    const QSize size = imageSize();
    if (size.isEmpty())
        return 1;
    return std::min(double(width()) / size.width(), double(height()) / size.height());
}

void ImageWidget::setScaleAround(double scale, const QPointF& fixed)
{
    const double before = this->scale();
    m_origin = fixed - (fixed - target().topLeft()) * (std::clamp(scale, smallestScale, largestScale) / before);
    m_scale = std::clamp(scale, smallestScale, largestScale);
    m_fitted = false;
    keepInSight();
    update();
    Q_EMIT scaleChanged();
}

void ImageWidget::keepInSight()
{
    const auto kept = [](double origin, double size, double room) {
        return size <= room ? (room - size) / 2 : std::clamp(origin, room - size, 0.0);
    };
    const QSizeF size = QSizeF(imageSize()) * m_scale;
    m_origin = {kept(m_origin.x(), size.width(), width()), kept(m_origin.y(), size.height(), height())};
}

void ImageWidget::hover(const QPointF& position)
{
    Q_EMIT pixelHovered(pixelAt(position).value_or(QPoint(-1, -1)));
}
