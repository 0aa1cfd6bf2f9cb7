#pragma once

#include <QtCore/QString>

#include <functional>

class CxImageData;

// The store of named values that scripts share: images, integers and strings in three separate name spaces. Names are
// case-sensitive. The store lives as long as the library and outlives every interpreter.
//
// Any thread may call these functions; one non-recursive lock serialises them. The readers call `use` while they hold
// the lock, so `use` must not run a script or anything else that could call the store. `use` may create a Python object
// that the interpreter's garbage collector does not track.

/// Stores a copy of the image under the name and deletes the previous image. Does nothing if the argument is the stored
/// image itself. Null empties an existing entry. If copying fails, the entry is empty.
void fx_vars_setImage(const QString& name, CxImageData* image);

/// Calls use with the image stored under the name, or with null. The store owns the image and deletes it when the name
/// is set again, even if a reader still uses the image.
void fx_vars_readImage(const QString& name, const std::function<void(CxImageData*)>& use);

/// Stores the value. Ignores an empty name.
void fx_vars_setInt(const QString& name, int value);

/// Calls use with the value, or with -1 if the name is unknown.
void fx_vars_readInt(const QString& name, const std::function<void(int)>& use);

/// Stores the value. Ignores an empty name.
void fx_vars_setString(const QString& name, const QString& value);

/// Calls use with the value, or with an empty string if the name is unknown.
void fx_vars_readString(const QString& name, const std::function<void(const QString&)>& use);
