#pragma once

#include <QtCore/QList>
#include <QtCore/QString>

#include <functional>

/// A place in a script that a text names.
struct ErrorPlace {
    QString file;        ///< as the text has it: a path, or the title of an untitled script
    int line = 0;        ///< counted from 1
    qsizetype begin = 0; ///< where the text names it: the first character
    qsizetype end = 0;   ///< behind the last character
};

/// Finds the places that a line of a traceback or of a message names: File "...", line N.
QList<ErrorPlace> errorPlacesIn(const QString& line);

/// What a run's errors say about one file.
struct FileError {
    int line = 0; ///< where the error left the file, counted from 1; 0: the errors do not name the file
    QString message;
};

/// Finds the last place in a file of the last traceback, and the error's message. `isFile` tells whether a name means
/// the file.
FileError errorInFile(const QString& errors, const std::function<bool(const QString& name)>& isFile);
