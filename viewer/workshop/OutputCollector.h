#pragma once

#include <QtCore/QMutex>
#include <QtCore/QString>

/// Collects the text that a script prints until the window shows it. Keeps the end if there is too much. May be used
/// on any thread.
class OutputCollector
{
public:
    struct Text {
        QString text;
        qint64 droppedLines = 0; ///< before the text
    };

    /// Returns true if nothing was collected before.
    bool add(const QString& text);

    /// What was collected since the last call.
    Text take();

    /// The most characters that are kept.
    static constexpr qsizetype most = 1 << 20;

private:
    QMutex m_lock;
    Text m_collected;
};
