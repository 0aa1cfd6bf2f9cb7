#include "ErrorLog.h"

#include <QtCore/QDebug>
#include <QtCore/QMessageLogger>
#include <QtCore/QThread>

void fx_logError(const QString& message, std::source_location where)
{
    QMessageLogger(where.file_name(), int(where.line()), where.function_name()).critical()
        << QThread::currentThreadId() << where.file_name() << "L" << where.line() << ":"
        << "" << message;
}
