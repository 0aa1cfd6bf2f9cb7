#include "Preferences.h"

#include <QtCore/QDebug>
#include <QtCore/QSettings>

namespace {

const QString environmentKey = QStringLiteral("scripts/environment");

QSettings settings()
{
    return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("vantrel"), QStringLiteral("viewer"));
}

} // namespace

QString Preferences::environment()
{
    return settings().value(environmentKey).toString();
}

void Preferences::setEnvironment(const QString& folder)
{
    QSettings all = settings();
    all.setValue(environmentKey, folder);
    all.sync();
    if (all.status() != QSettings::NoError)
        qCritical().noquote() << QStringLiteral("Cannot write the preferences to %1.").arg(all.fileName());
}
