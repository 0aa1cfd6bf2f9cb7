#pragma once

#include <QtCore/QString>

/// Checks of folders that the interpreter is to use, made before it starts: it ends the process if it finds nothing
/// there. language is a plugin's, for example "Python 3.11.2". Both functions return an error message, empty on success
/// and for an empty folder.
namespace PythonFolders {

/// A Python home, which must hold the standard library.
QString problemWithHome(const QString& folder, const QString& language);

/// A virtual environment, which must be made for the same version.
QString problemWithEnvironment(const QString& folder, const QString& language);

} // namespace PythonFolders
