#pragma once

#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QtGlobal>

/// Collects Qt's log records while it lives, and writes them nowhere else. Only one may exist at a time.
class LogCapture
{
public:
    LogCapture()
    {
        s_current = this;
        m_previous = qInstallMessageHandler(&LogCapture::receive);
    }
    ~LogCapture()
    {
        qInstallMessageHandler(m_previous);
        s_current = nullptr;
    }
    Q_DISABLE_COPY_MOVE(LogCapture)

    struct Record {
        QtMsgType type = QtDebugMsg;
        QString category;
        QString text;
    };

    QList<Record> records() const
    {
        const QMutexLocker locker(&m_lock);
        return m_records;
    }

    /// The texts of the critical records, in order.
    QStringList criticals() const
    {
        QStringList texts;
        for (const Record& record : records()) {
            if (record.type == QtCriticalMsg)
                texts.append(record.text);
        }
        return texts;
    }

private:
    static void receive(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        const QMutexLocker locker(&s_current->m_lock);
        s_current->m_records.append({type, QString::fromUtf8(context.category), text});
    }

    static inline LogCapture* s_current = nullptr;
    QtMessageHandler m_previous = nullptr;
    mutable QMutex m_lock;
    QList<Record> m_records;
};
