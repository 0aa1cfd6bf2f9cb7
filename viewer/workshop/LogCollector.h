#pragma once

#include "OutputCollector.h"

#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtCore/qlogging.h>

#include <vector>

/// Collects records of the log until the window shows them. Keeps the end if there are too many. May be used on any
/// thread.
class LogCollector
{
public:
    /// Returns true if nothing was collected before. Does little: scripts may log in a loop.
    bool add(QtMsgType type, const QString& text);

    /// What was collected since the last call, as lines: time, severity, text.
    OutputCollector::Text take();

    /// The most records that are kept.
    static constexpr std::size_t most = 10000;

    /// Where the word for the severity begins in a line, and the word for critical records.
    static constexpr int severityColumn = 14;
    static constexpr const char* criticalWord = "critical";

private:
    struct Record {
        qint64 time; ///< milliseconds since 1970
        QtMsgType type;
        QString text;
    };

    static QString line(const Record& record, const QString& clock);

    QMutex m_lock;
    std::vector<Record> m_records;
    qint64 m_dropped = 0; ///< lines
};
