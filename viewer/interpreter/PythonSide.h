#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

/// The viewer's own Python modules, in the folder python/: how the viewer calls them. The texts are Python source.
namespace PythonSide {

/// What must run before the first script: makes the modules known to the interpreter. environment is the absolute path
/// of the virtual environment whose packages scripts use; empty: none.
QString preparation(const QString& environment);

/// A run of a script file.
struct Call {
    QString file;           ///< the absolute path
    QString shownPath;      ///< the path as the user has given it
    QStringList arguments;  ///< of the script
    bool stays = false;     ///< whether a SystemExit ends the script alone
    int* outcome = nullptr; ///< set to the number of a ScriptOutcome; lives until then
};

/// Text that runs a file as Python runs a file.
QString callFor(const Call& call);

/// A run of a text that has no file of its own.
struct TextCall {
    QString text;
    QString title;          ///< stands for the file in error messages
    QString file;           ///< the absolute path of the file that it came from, or would have
    bool stays = false;     ///< as above
    int* outcome = nullptr; ///< as above
};

/// Text that runs a text as Python runs a file.
QString callFor(const TextCall& call);

/// Text that ends a process that a script has forked, with an exit status.
QString endOfChild(int status);

} // namespace PythonSide
