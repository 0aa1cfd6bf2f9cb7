#include "ScriptFile.h"

#include <QtCore/QFile>
#include <QtCore/QStringDecoder>

std::optional<QString> readScriptFile(const QString& path, QString& problem)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        problem = QStringLiteral("The script %1 cannot be read: %2.").arg(path, file.errorString());
        return {};
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) { // a folder opens and then gives nothing
        problem = QStringLiteral("The script %1 cannot be read: %2.").arg(path, file.errorString());
        return {};
    }
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(bytes);
    if (decoder.hasError()) {
        problem = QStringLiteral("The script %1 cannot be read: it is not UTF-8 text.").arg(path);
        return {};
    }
    return text;
}
