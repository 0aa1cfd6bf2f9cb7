#pragma once

#include <QtCore/QString>

/// What the user has chosen for all starts of the viewer, in the user's configuration folder.
namespace Preferences {

/// The absolute path of the virtual environment for scripts; empty: none.
QString environment();
void setEnvironment(const QString& folder);

} // namespace Preferences
