#include "Preferences.h"

#include <QtCore/QDebug>
#include <QtCore/QSettings>

#include <algorithm>

namespace {

const QString environmentKey = QStringLiteral("scripts/environment");
const QString recentKey = QStringLiteral("scripts/recent");
const QString openKey = QStringLiteral("scripts/open");
const QString zoomKey = QStringLiteral("editor/zoom");
const QString geometryKey = QStringLiteral("window/geometry");
const QString stateKey = QStringLiteral("window/state");

constexpr int mostRecent = 15;
constexpr int leastZoom = -10;
constexpr int mostZoom = 20;

/// A value of any type that the file may hold: what is not as expected is as if it were not there.
QVariant value(const QString& key)
{
    const QSettings all(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("vantrel"),
                        QStringLiteral("viewer"));
    return all.value(key);
}

void setValue(const QString& key, const QVariant& value)
{
    QSettings all(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("vantrel"), QStringLiteral("viewer"));
    if (all.value(key) == value)
        return;
    all.setValue(key, value);
    all.sync();
    if (all.status() != QSettings::NoError)
        qCritical().noquote() << QStringLiteral("Cannot write the preferences to %1.").arg(all.fileName());
}

} // namespace

QString Preferences::environment()
{
    return value(environmentKey).toString();
}

void Preferences::setEnvironment(const QString& folder)
{
    setValue(environmentKey, folder);
}

QStringList Preferences::recentScripts()
{
    return value(recentKey).toStringList().mid(0, mostRecent);
}

void Preferences::noteRecentScript(const QString& path)
{
    QStringList recent = recentScripts();
    recent.removeAll(path);
    recent.prepend(path);
    setValue(recentKey, recent.mid(0, mostRecent));
}

QStringList Preferences::openScripts()
{
    return value(openKey).toStringList();
}

void Preferences::setOpenScripts(const QStringList& paths)
{
    setValue(openKey, paths);
}

int Preferences::editorZoom()
{
    return std::clamp(value(zoomKey).toInt(), leastZoom, mostZoom);
}

void Preferences::setEditorZoom(int steps)
{
    setValue(zoomKey, steps);
}

QByteArray Preferences::windowGeometry()
{
    return value(geometryKey).toByteArray();
}

QByteArray Preferences::windowState()
{
    return value(stateKey).toByteArray();
}

void Preferences::setWindow(const QByteArray& geometry, const QByteArray& state)
{
    setValue(geometryKey, geometry);
    setValue(stateKey, state);
}
