#pragma once

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>
#include <QtGui/QColor>

#include <array>

/// Line colours for new series, used in turn.
extern const std::array<Qt::GlobalColor, 12> g_clDefAxesColors;

/// The data of a graph: its series and their appearance. Plain data without a lock: one thread at a time.
struct CxGraphData {
    struct CxSeries {
        QList<QPointF> points; ///< in the order added; drawn in the order of x
        QColor lineColor;
    };

    QList<CxSeries> series; ///< in the order added
    double xMin = 0.0;      ///< fixed range of the x axis, used when autoX is false
    double xMax = 256.0;
    double yMin = 0.0; ///< fixed range of the y axis, used when autoY is false
    double yMax = 256.0;
    bool autoX = true; ///< fits the x axis to the data
    bool autoY = true;
    QColor backgroundColor = Qt::white;
    QColor axesColor = Qt::black; ///< axis lines, ticks and tick labels
    QColor gridColor = Qt::lightGray;
    quint32 nextColorIndex = 0; ///< index into g_clDefAxesColors for the next new series

    /// Appends an empty series in the next colour of the cycle. Returns its index, which counts from 0.
    qsizetype addSeries();

    /// The series at an index that counts from 0, or null if there is none.
    CxSeries* seriesAt(qsizetype index);

    /// Sets the dark or the default colours of background, axes and grid. Series and ranges do not change.
    void setDarkColorTheme(bool on);

    /// A series as text: a header line, then one line per point with x and y separated by a tab.
    static QString seriesText(const CxSeries& series);
};
