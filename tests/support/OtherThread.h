#pragma once

#include <QtCore/QThread>

#include <functional>
#include <memory>

/// Runs a function on a thread that is not the GUI thread, and waits for its end.
inline void onOtherThread(const std::function<void()>& function)
{
    const std::unique_ptr<QThread> thread(QThread::create(function));
    thread->setStackSize(16U << 20U); // scripts count on the room of a main thread
    thread->start();
    thread->wait();
}
