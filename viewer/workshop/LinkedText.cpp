#include "LinkedText.h"

#include "ErrorPlaces.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QTextCharFormat>
#include <QtWidgets/QApplication>

LinkedText::LinkedText()
{
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setUndoRedoEnabled(false);
    viewport()->setMouseTracking(true);
}

void LinkedText::addText(const QString& text, const QColor& color)
{
    QTextCharFormat plain;
    plain.setForeground(color);
    QTextCursor end(document());
    end.movePosition(QTextCursor::End);
    qsizetype written = 0;
    for (const ErrorPlace& place : errorPlacesIn(text)) {
        QTextCharFormat link = plain;
        link.setAnchor(true);
        link.setAnchorHref(QStringLiteral("%1:%2").arg(place.line).arg(place.file));
        link.setFontUnderline(true);
        end.insertText(text.mid(written, place.begin - written), plain);
        end.insertText(text.mid(place.begin, place.end - place.begin), link);
        written = place.end;
    }
    end.insertText(text.mid(written), plain);
}

void LinkedText::mouseMoveEvent(QMouseEvent* event)
{
    QPlainTextEdit::mouseMoveEvent(event);
    viewport()->setCursor(anchorAt(event->pos()).isEmpty() ? Qt::IBeamCursor : Qt::PointingHandCursor);
}

void LinkedText::mousePressEvent(QMouseEvent* event)
{
    QPlainTextEdit::mousePressEvent(event);
    m_pressed = event->pos();
}

void LinkedText::mouseReleaseEvent(QMouseEvent* event)
{
    QPlainTextEdit::mouseReleaseEvent(event);
    const QString link = anchorAt(event->pos());
    const bool isDrag = (event->pos() - m_pressed).manhattanLength() >= QApplication::startDragDistance();
    if (event->button() == Qt::LeftButton && !link.isEmpty() && !isDrag)
        Q_EMIT placeChosen(link.section(QLatin1Char(':'), 1), link.section(QLatin1Char(':'), 0, 0).toInt());
}
