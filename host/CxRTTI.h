#pragma once

#include "HostGlobal.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>

/// The registry of classes that are known by name at run time: processing-chain stages and other classes of the host.
/// Register classes before the first script runs; after that any thread may use the registry.
class VANTREL_HOST_EXPORT CxRTTI
{
public:
    static CxRTTI* instance();

    /// Names of the registered classes that are the class named interfaceName or derive from it, in the order of
    /// registration. With creatableOnly, leaves out classes without a factory.
    QStringList classesForInterface(const QString& interfaceName, bool creatableOnly) const;

    /// The display name of a class; the class name itself if the class was registered without one. Empty for a class
    /// that is not registered.
    QString customNameForClass(const QString& className) const;

    /// A new object of a class, owned by the caller. Null if the class is not registered, has no factory, or its
    /// factory returns null.
    QObject* createInstanceOfClass(const QString& className) const;

    /// Registers a class under the name in its meta object, in place of an earlier entry of that name. create is the
    /// factory; it may be empty for a class without instances.
    void registerClass(const QMetaObject& metaObject, const QString& customName, std::function<QObject*()> create);

    /// Removes a class. Does nothing if it is not registered.
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
