#include "CxGraphData.h"

const std::array<Qt::GlobalColor, 12> g_clDefAxesColors = {
    Qt::red,     Qt::blue,     Qt::green,     Qt::cyan,     Qt::magenta,     Qt::yellow,
    Qt::darkRed, Qt::darkBlue, Qt::darkGreen, Qt::darkCyan, Qt::darkMagenta, Qt::darkYellow,
};

qsizetype CxGraphData::addSeries()
{
    series.append(CxSeries{{}, g_clDefAxesColors[nextColorIndex]});
    nextColorIndex = (nextColorIndex + 1) % quint32(g_clDefAxesColors.size());
    return series.size() - 1;
}

CxGraphData::CxSeries* CxGraphData::seriesAt(qsizetype index)
{
    return index >= 0 && index < series.size() ? &series[index] : nullptr;
}

void CxGraphData::setDarkColorTheme(bool on)
{
    backgroundColor = on ? QColor(55, 55, 55) : QColor(Qt::white);
    axesColor = on ? QColor(230, 230, 230) : QColor(Qt::black);
    gridColor = on ? QColor(80, 80, 80) : QColor(Qt::lightGray);
}

QString CxGraphData::seriesText(const CxSeries& series)
{
    QString text = QStringLiteral("x\ty\n");
    for (const QPointF& point : series.points)
        text += QStringLiteral("%1\t%2\n").arg(point.x(), 0, 'g', 16).arg(point.y(), 0, 'g', 16);
    return text;
}
