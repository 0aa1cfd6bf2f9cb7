#pragma once

#include <QtCore/QThread>

#include <functional>
#include <memory>

/// Runs a function on another thread and waits until it returns.
inline void onOtherThread(const std::function<void()>& function)
{
    const std::unique_ptr<QThread> thread(QThread::create(function));
    thread->setStackSize(16U << 20U); // scripts need a stack as large as a main thread's
    thread->start();
    thread->wait();
}
