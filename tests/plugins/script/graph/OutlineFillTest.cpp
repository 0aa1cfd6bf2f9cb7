// Outlines are filled with the same pixels as the toolkit's painter makes.

#include "graph/OutlineFill.h"
#include "BarePlot.h"

#include <QtGui/QPainter>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

class RandomOutline
{
public:
    explicit RandomOutline(unsigned seed)
        : m_random(seed)
    {
    }

    double between(double low, double high) { return std::uniform_real_distribution(low, high)(m_random); }
    int number(int low, int high) { return std::uniform_int_distribution(low, high)(m_random); }
    QColor color() { return QColor(number(0, 255), number(0, 255), number(0, 255)); }

    /// With edges that stand upright, lie level, meet pixel borders, come again and lead far away.
    QPainterPath outline(const QSize& size)
    {
        const double far = number(0, 4) == 0 ? std::pow(10.0, between(0, 3)) : 1;
        const bool onBorders = number(0, 3) == 0;
        const auto place = [&](int length) {
            const double middle = length / 2.0;
            const double at = middle + between(-1.3, 1.3) * middle * (number(0, 3) == 0 ? far : 1);
            return onBorders ? std::round(at * 4) / 4 : at;
        };
        QPainterPath path;
        path.setFillRule(Qt::WindingFill);
        for (int part = number(1, 3); part > 0; --part) {
            QPointF last(place(size.width()), place(size.height()));
            path.moveTo(last);
            for (int corner = number(1, 30); corner > 0; --corner) {
                const int kind = number(0, 9);
                last = {kind == 0 ? last.x() : place(size.width()), kind == 1 ? last.y() : place(size.height())};
                path.lineTo(last);
            }
        }
        return path;
    }

private:
    std::mt19937 m_random;
};

void paint(QImage& image, const QPainterPath& outline, const QRect& visible, const QColor& color)
{
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRect(visible);
    painter.fillPath(outline, color);
}

/// In grey levels. The fourth byte of a pixel means nothing.
int largestDifference(const QImage& a, const QImage& b)
{
    int largest = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int i = 0; i < a.width() * a.depth() / 8; ++i)
            if (a.depth() != 32 || i % 4 != 3)
                largest = std::max(largest, std::abs(a.constScanLine(y)[i] - b.constScanLine(y)[i]));
    return largest;
}

TEST(OutlineFill, MakesThePixelsOfThePainter)
{
    for (unsigned seed = 0; seed < 3000; ++seed) {
        RandomOutline random(seed);
        const QSize size(random.number(1, 70), random.number(1, 100));
        const QRect visible = random.number(0, 1) == 0
                                  ? QRect(QPoint(0, 0), size)
                                  : QRect(size.width() / 3, size.height() / 4, size.width() / 2, size.height() / 2);
        QImage image(size, random.number(0, 1) == 0 ? QImage::Format_RGB888 : QImage::Format_RGB32);
        image.fill(random.color());
        QImage painted = image.copy();
        const QPainterPath outline = random.outline(size);
        const QColor color = random.color();
        fx_graph_fillOutline(image, outline, visible, color);
        if (!visible.isEmpty())
            paint(painted, outline, visible, color);
        ASSERT_LE(largestDifference(image, painted), allowedDifference()) << "outline " << seed;
    }
}

// Every coverage over every value.
TEST(OutlineFill, BlendsAndRoundsAsThePainter)
{
    for (const QImage::Format format : {QImage::Format_RGB888, QImage::Format_RGB32}) {
        for (int value = 0; value < 256; ++value) {
            QImage image(8, 512, format);
            image.fill(QColor(255, value, 0));
            QImage painted = image.copy();
            // The right side leans by two pixels in all: it covers each part of a pixel.
            QPainterPath outline;
            outline.setFillRule(Qt::WindingFill);
            outline.addPolygon(QPolygonF({{0, 0}, {3, 0}, {5, 512}, {0, 512}}));
            const QColor color(value, 128, 255 - value);
            fx_graph_fillOutline(image, outline, image.rect(), color);
            paint(painted, outline, image.rect(), color);
            ASSERT_EQ(image, painted) << value;
        }
    }
}

// Upright strokes in one pixel, all in one direction: their heights and areas add up.
TEST(OutlineFill, AddsUpAnyNumberOfEdgesInAPixel)
{
    for (const int count : {100, 10'000, 20'000, 50'000, 100'000}) {
        for (const bool downwards : {false, true}) {
            QPainterPath outline;
            outline.setFillRule(Qt::WindingFill);
            for (int i = 0; i < count; ++i) {
                outline.moveTo(2.25, downwards ? 0 : 8);
                outline.lineTo(2.75, downwards ? 8 : 0);
                outline.lineTo(6.5, 4);
                outline.closeSubpath();
            }
            QImage image(8, 8, QImage::Format_RGB32);
            image.fill(Qt::white);
            QImage painted = image.copy();
            fx_graph_fillOutline(image, outline, image.rect(), Qt::red);
            paint(painted, outline, image.rect(), Qt::red);
            EXPECT_EQ(image, painted) << count << (downwards ? " down" : " up");
        }
    }
}

} // namespace
