#pragma once

#include <QtCore/QStringList>
#include <QtCore/QTimer>
#include <QtWidgets/QLabel>

/// Shows texts in the lower right corner of its parent, one after another, each for a few seconds. A click dismisses
/// the text.
class NotificationArea : public QLabel
{
    Q_OBJECT
public:
    explicit NotificationArea(QWidget* parent);

    /// Sets the height in pixels that stays free at the parent's lower edge.
    void setBottomMargin(int pixels) { m_bottomMargin = pixels; }

    /// Shows the text when its turn comes.
    void add(const QString& text);

    /// Number of texts that wait for their turn.
    qsizetype waiting() const { return m_waiting.size(); }

    /// How long a text is shown, in milliseconds: usually, and while others wait.
    static constexpr int usualTime = 5000;
    static constexpr int shortTime = 2000;

Q_SIGNALS:
    /// A text has appeared; an empty text means that none is left.
    void notificationShown(const QString& text);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void showNext();
    void place();

    int m_bottomMargin = 0;
    QStringList m_waiting;
    QTimer m_timer;
};
