#include "LogCollector.h"

#include <QtCore/QDateTime>

#include <iterator>
#include <utility>

bool LogCollector::add(QtMsgType type, const QString& text)
{
    // The time becomes text later: that takes longer than all the rest.
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const QMutexLocker lock(&m_lock);
    const bool first = m_records.empty();
    m_records.push_back({now, type, text});
    // Twice the number before any are dropped, so that each record is moved once on average.
    if (m_records.size() >= 2 * most) {
        const auto end = m_records.begin() + std::ptrdiff_t(m_records.size() - most);
        for (auto record = m_records.begin(); record != end; ++record)
            m_dropped += record->text.count(QLatin1Char('\n')) + 1;
        m_records.erase(m_records.begin(), end);
    }
    return first;
}

OutputCollector::Text LogCollector::take()
{
    std::vector<Record> records;
    OutputCollector::Text result;
    {
        const QMutexLocker lock(&m_lock);
        records.swap(m_records);
        result.droppedLines = std::exchange(m_dropped, 0);
    }
    // Most records come in the same second as the one before, and the local time of a second takes long to find.
    qint64 second = -1;
    QString clock;
    for (const Record& record : records) {
        if (record.time / 1000 != second) {
            second = record.time / 1000;
            clock = QDateTime::fromSecsSinceEpoch(second).time().toString(QStringLiteral("HH:mm:ss."));
        }
        result.text += line(record, clock);
    }
    return result;
}

QString LogCollector::line(const Record& record, const QString& clock)
{
    QString line = clock + QString::number(record.time % 1000).rightJustified(3, QLatin1Char('0'));
    line += record.type == QtWarningMsg ? QStringLiteral("  warning   ") : QStringLiteral("  critical  ");
    const QString indentation = QLatin1Char('\n') + QString(line.size(), QLatin1Char(' '));
    line += QString(record.text).replace(QLatin1Char('\n'), indentation);
    line += QLatin1Char('\n');
    return line;
}
