#include "ScriptFile.h"

#include <QtCore/QFile>
#include <QtCore/QStringDecoder>

namespace {

std::optional<QByteArray> readBytes(const QString& path, QString& problem)
{
    QFile file(path);
    QByteArray bytes;
    if (file.open(QIODevice::ReadOnly))
        bytes = file.readAll(); // can fail even after opening, for example for a folder
    if (file.error() == QFileDevice::NoError)
        return bytes;
    problem = QStringLiteral("Cannot read the script %1: %2.").arg(path, file.errorString());
    return {};
}

} // namespace

QString problemWithScriptFile(const QString& path)
{
    QString problem;
    readBytes(path, problem);
    return problem;
}

std::optional<QString> readScriptFile(const QString& path, QString& problem)
{
    const auto bytes = readBytes(path, problem);
    if (!bytes)
        return {};
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(*bytes);
    if (decoder.hasError()) {
        problem = QStringLiteral("Cannot read the script %1: it is not UTF-8 text.").arg(path);
        return {};
    }
    return text;
}
