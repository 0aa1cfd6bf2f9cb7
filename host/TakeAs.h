#pragma once

#include <QtCore/QObject>

#include <memory>

/// Takes over an object that is known as a QObject only, such as the result of CxImageData::clone().
///
/// Returns the object as its class or interface T (what qobject_cast accepts, with a virtual destructor). Returns null
/// if the object is null or not a T; it is then deleted.
template<typename T>
[[nodiscard]] std::unique_ptr<T> takeAs(QObject* object)
{
    std::unique_ptr<QObject> owned(object);
    std::unique_ptr<T> result(qobject_cast<T*>(object));
    if (result)
        static_cast<void>(owned.release());
    return result;
}
