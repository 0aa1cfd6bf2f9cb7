// The registry of classes that are known by name at run time.

#include "CxRTTI.h"

#include <algorithm>
#include <utility>

namespace {

bool derivesFrom(const QMetaObject* metaObject, const QString& className)
{
    for (; metaObject; metaObject = metaObject->superClass()) {
        if (className == QLatin1String(metaObject->className()))
            return true;
    }
    return false;
}

} // namespace

CxRTTI* CxRTTI::instance()
{
    static CxRTTI registry;
    return &registry;
}

CxRTTI::CxRTTI() = default;

QStringList CxRTTI::classesForInterface(const QString& interfaceName, bool creatableOnly) const
{
    QStringList names;
    for (const SxClass& entry : m_classes) {
        if (derivesFrom(entry.metaObject, interfaceName) && (entry.create || !creatableOnly))
            names.append(QString::fromLatin1(entry.metaObject->className()));
    }
    return names;
}

QString CxRTTI::customNameForClass(const QString& className) const
{
    const SxClass* entry = find(className);
    if (!entry)
        return QString();
    return entry->customName.isEmpty() ? className : entry->customName;
}

QObject* CxRTTI::createInstanceOfClass(const QString& className) const
{
    const SxClass* entry = find(className);
    return entry && entry->create ? entry->create() : nullptr;
}

void CxRTTI::registerClass(const QMetaObject& metaObject, const QString& customName, std::function<QObject*()> create)
{
    unregisterClass(metaObject);
    m_classes.append({&metaObject, customName, std::move(create)});
}

void CxRTTI::unregisterClass(const QMetaObject& metaObject)
{
    m_classes.removeIf([&metaObject](const SxClass& entry) {
        return qstrcmp(entry.metaObject->className(), metaObject.className()) == 0;
    });
}

const CxRTTI::SxClass* CxRTTI::find(const QString& className) const
{
    const auto found = std::find_if(m_classes.begin(), m_classes.end(), [&className](const SxClass& entry) {
        return className == QLatin1String(entry.metaObject->className());
    });
    return found == m_classes.end() ? nullptr : &*found;
}
