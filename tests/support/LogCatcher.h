#pragma once

#include <QtCore/QList>
#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// Collects the log records that any thread writes while it lives.
class LogCatcher
{
public:
    struct Record {
        QtMsgType type;
        QString category;
        bool namesFile;
        int line;
        QString text;
    };

    LogCatcher()
    {
        records.clear();
        m_former = qInstallMessageHandler(collect);
    }
    ~LogCatcher() { qInstallMessageHandler(m_former); }
    LogCatcher(const LogCatcher&) = delete;
    LogCatcher& operator=(const LogCatcher&) = delete;

    static QStringList texts()
    {
        QStringList texts;
        for (const Record& record : std::as_const(records))
            texts.append(record.text);
        return texts;
    }

    static inline QList<Record> records;

private:
    static void collect(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        static QMutex lock;
        const QMutexLocker locker(&lock);
        records.append({type, QString::fromUtf8(context.category), context.file != nullptr, context.line, text});
    }

    QtMessageHandler m_former;
};
