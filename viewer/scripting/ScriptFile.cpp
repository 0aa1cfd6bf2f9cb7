#include "ScriptFile.h"

#include <QtCore/QFile>
#include <QtCore/QStringDecoder>

std::optional<QString> readScriptFile(const QString& path, QString& problem)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        problem = QStringLiteral("Cannot read the script %1: %2.").arg(path, file.errorString());
        return {};
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) { // reading can fail even after opening
        problem = QStringLiteral("Cannot read the script %1: %2.").arg(path, file.errorString());
        return {};
    }
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(bytes);
    if (decoder.hasError()) {
        problem = QStringLiteral("Cannot read the script %1: it is not UTF-8 text.").arg(path);
        return {};
    }
    return text;
}
