#pragma once

#include "HostGlobal.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>

/// The registry of classes that are known by name at run time: processing-chain stages and whatever else a host
/// registers. Any thread may ask; classes are registered before the first script runs.
class VANTREL_HOST_EXPORT CxRTTI
{
public:
    static CxRTTI* instance();

    /// Names of the registered classes that are derived from the class named interfaceName, in the order of their
    /// registration. With creatableOnly the ones are left out of which createInstanceOfClass() makes no instance.
    QStringList classesForInterface(const QString& interfaceName, bool creatableOnly) const;

    /// The name under which a user knows a class; the class name itself when it was registered without one, and empty
    /// for a class that is not registered.
    QString customNameForClass(const QString& className) const;

    /// A new object of a class, owned by the caller. Null for a class that is not registered or is registered without a
    /// factory, and when the factory gives null.
    QObject* createInstanceOfClass(const QString& className) const;

    /// Makes a class known under the name in its meta object. A class that is registered again replaces the former
    /// entry. create may be empty: no instances are made then.
    void registerClass(const QMetaObject& metaObject, const QString& customName, std::function<QObject*()> create);

    /// Takes a class back; does nothing when it is not registered.
    void unregisterClass(const QMetaObject& metaObject);

private:
    CxRTTI();
    Q_DISABLE_COPY_MOVE(CxRTTI)

    struct SxClass {
        const QMetaObject* metaObject;
        QString customName;
        std::function<QObject*()> create;
    };
    const SxClass* find(const QString& className) const;

    QList<SxClass> m_classes;
};
