#pragma once

#include <QtCore/QtGlobal>

/// Lets other threads of a script use the interpreter while the object lives, although the thread that has constructed
/// the object does not use it. Does nothing without an interpreter, without the functions it needs, and on a thread
/// that does not use the interpreter at that time. Destroyed on the thread that constructed it.
class ReleasedInterpreter
{
public:
    ReleasedInterpreter();
    ~ReleasedInterpreter();
    Q_DISABLE_COPY_MOVE(ReleasedInterpreter)

private:
    void* m_state = nullptr; ///< of the thread, if the object took it
};
