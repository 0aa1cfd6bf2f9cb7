#pragma once

#include <QtCore/QObject>

#include <memory>

/// Takes over an object that a host function returns as a QObject and that should be a T. Returns null for null.
/// Deletes an object of another class and returns null.
template<typename T>
std::unique_ptr<T> takeAs(QObject* object)
{
    std::unique_ptr<QObject> owned(object);
    std::unique_ptr<T> result(qobject_cast<T*>(object));
    if (result)
        static_cast<void>(owned.release());
    return result;
}
