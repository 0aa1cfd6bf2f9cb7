#pragma once

#include <QtCore/QString>

#include <functional>

class CxImageData;

// The store of named values that scripts share: images, integers and strings, three name spaces of their own. Names
// differ when the case of a letter does. It lives as long as the library and outlives every interpreter.
//
// Any thread may call any of these; one lock, not recursive, serialises them. The readers call `use` while they hold
// it, so `use` must not run a script, nor anything else that could come back to the store. It may create a Python
// object that the interpreter's garbage collector does not look at.

/// Keeps a copy of the image under the name, in place of the image kept there, which is deleted. The very image that is
/// kept there already changes nothing. Null empties an entry that exists; a copy that fails leaves it empty.
void fx_vars_setImage(const QString& name, CxImageData* image);

/// Calls use with the image kept under the name, or with null. The image stays the store's and is valid until the name
/// is set again, also for readers that are still using it then: the store does not know them.
void fx_vars_readImage(const QString& name, const std::function<void(CxImageData*)>& use);

/// Keeps the value; an empty name is ignored.
void fx_vars_setInt(const QString& name, int value);

/// Calls use with the value, or with -1 when the name is unknown.
void fx_vars_readInt(const QString& name, const std::function<void(int)>& use);

/// Keeps the value; an empty name is ignored.
void fx_vars_setString(const QString& name, const QString& value);

/// Calls use with the value, or with an empty string when the name is unknown.
void fx_vars_readString(const QString& name, const std::function<void(const QString&)>& use);
