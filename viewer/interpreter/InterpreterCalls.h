#pragma once

#include <QtCore/QString>

/// The few functions of the interpreter that the viewer calls itself. They are found by name at run time, since the
/// viewer works with any plugin; without an interpreter in the process each does nothing.
///
/// All are called on the thread that runs scripts, while no other thread executes Python code.
namespace InterpreterCalls {

/// Makes an uncaught SystemExit go to `sys.excepthook` like other errors, instead of ending the process. Called before
/// the interpreter starts, with the file of the loaded plugin.
void surviveSystemExit(const QString& plugin);

/// Whether a frame is one of a script, and neither None nor one of the viewer's own.
bool isInScript(void* frame);

/// Whether an error raised in a frame would be lost or leave something behind: in a finaliser, whose errors the
/// interpreter only reports, while a program is being started, which would run on, and in the viewer's own code.
bool isDelicate(void* frame);

/// Sets KeyboardInterrupt as the pending error. Its traceback does not tell which error the script was handling.
void raiseKeyboardInterrupt();

/// Sets KeyboardInterrupt as the pending error, and again at each line and call that the script executes then, until
/// the script has ended. Finalisers and the start of a program may go on for a second, and so may the code that ends a
/// program. frame is the one that executes now.
void raiseAtEveryLine(void* frame);

/// After raiseAtEveryLine(): sets the error in a frame that had its time and waits, so that no line comes.
void endDelicate(void* frame);

/// Ends raiseAtEveryLine(). Handles the signals that the interpreter has noted but not handled, and drops the errors
/// they raise.
void dropPendingSignals();

} // namespace InterpreterCalls
