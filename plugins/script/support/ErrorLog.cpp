#include "ErrorLog.h"

#include <QtCore/QDebug>
#include <QtCore/QMessageLogger>
#include <QtCore/QThread>

void fx_logError(const QString& message, const char* file, int line)
{
    QMessageLogger(file, line, nullptr).critical() << QThread::currentThreadId() << file << "L" << line << ":"
                                                   << "" << message;
}
