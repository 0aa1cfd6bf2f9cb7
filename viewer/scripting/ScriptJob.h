#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

class ScriptEnvironment;

/// One run: of a script file, or of a text.
struct ScriptJob {
    QString file; ///< the absolute path; empty: the text is run
    QString text;
    QString title;         ///< of a text that a user has written; stands for the file in error messages
    QString origin;        ///< the absolute path of the file that such a text came from, or would have
    QString shownPath;     ///< the file's path as the user has given it
    QStringList arguments; ///< of the script
    std::shared_ptr<ScriptEnvironment> environment;
    QString name; ///< for the display
};

/// How a run ended. The viewer's Python side uses the same numbers.
enum class ScriptOutcome {
    Ran = 0,         ///< to its end
    Failed = 1,      ///< with an uncaught error
    Interrupted = 2, ///< with an uncaught KeyboardInterrupt
    Left = 3,        ///< with a SystemExit, and the viewer stays
};
