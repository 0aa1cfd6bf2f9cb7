#pragma once

#include <QtCore/QList>
#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QtGlobal>

/// Collects the log records that any thread writes while it lives, and writes them nowhere else. Only one may exist at
/// a time.
class LogCapture
{
public:
    struct Record {
        QtMsgType type = QtDebugMsg;
        QString category;
        bool namesFile = false; ///< whether the record names the source file that wrote it
        int line = 0;
        QString text;
    };

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

    QList<Record> records() const
    {
        const QMutexLocker locker(&m_lock);
        return m_records;
    }

    /// The texts of all records, in order.
    QStringList texts() const
    {
        QStringList texts;
        for (const Record& record : records())
            texts.append(record.text);
        return texts;
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

    void clear()
    {
        const QMutexLocker locker(&m_lock);
        m_records.clear();
    }

private:
    static void receive(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        const QMutexLocker locker(&s_current->m_lock);
        s_current->m_records.append(
            {type, QString::fromUtf8(context.category), context.file != nullptr, context.line, text});
    }

    static inline LogCapture* s_current = nullptr;
    QtMessageHandler m_previous = nullptr;
    mutable QMutex m_lock;
    QList<Record> m_records;
};
