#pragma once

#include "OutputCollector.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

#include <functional>

class LinkedText;
class QLabel;

/// Shows a text that grows. Keeps its last lines and says how many others it has dropped.
class OutputPane : public QWidget
{
    Q_OBJECT
public:
    /// Takes the text that has come since the last call.
    using Source = std::function<OutputCollector::Text()>;

    explicit OutputPane(Source source);

    /// Shows what the source has soon. May be called on any thread.
    void lookSoon();

    /// Shows the text so far, then this text in the colour of errors.
    void addError(const QString& text);

    bool isEmpty() const;

    LinkedText* text() const { return m_text; }

    /// The most lines that are kept.
    static constexpr int mostLines = 10000;

Q_SIGNALS:
    /// The pane shows more text.
    void grown();

    /// The pane has come into sight.
    void shown();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void showCollected();
    void append(const QString& text, const QColor& color);
    void noteDropped(qint64 lines);
    void noteScrolling();
    void followEnd();

    Source m_source;
    QTimer m_timer;
    int m_pause; ///< milliseconds between two texts
    int m_column = 0;
    bool m_isAppending = false;
    bool m_followsEnd = true; ///< until a reader scrolls up
    qint64 m_dropped = 0;
    QLabel* m_droppedText;
    LinkedText* m_text;
};
