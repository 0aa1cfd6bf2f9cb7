#pragma once

#include <QtCore/QStringList>
#include <QtCore/QtGlobal>

/// Collects the log lines of its lifetime instead of printing them. One at a time.
class LogCapture
{
public:
    LogCapture()
        : m_previous(qInstallMessageHandler(&LogCapture::take))
    {
        lines().clear();
    }
    ~LogCapture() { qInstallMessageHandler(m_previous); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    static QStringList& lines()
    {
        static QStringList all;
        return all;
    }

private:
    static void take(QtMsgType, const QMessageLogContext&, const QString& text) { lines() += text; }

    QtMessageHandler m_previous;
};
