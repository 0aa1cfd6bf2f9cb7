#pragma once

#include "CxCameraManager.h"
#include "CxCameraParameters.h"
#include "CxImageData.h"
#include "ViewerCamera.h"
#include "scripting/ApplicationDelegate.h"
#include "views/ImageView.h"
#include "window/MainWindow.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>

#include <gtest/gtest.h>

#include <functional>

/// An application with two simulated cameras.
class CameraWindowTest : public testing::Test
{
protected:
    CameraWindowTest() { delegate.cameras().openSimulated(2); }

    /// Runs the event loop until it is so, or far too long.
    static bool until(const std::function<bool()>& isSo)
    {
        QElapsedTimer timer;
        timer.start();
        while (!isSo()) {
            if (timer.elapsed() > 20000)
                return false;
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        }
        return true;
    }

    static void runFor(int milliseconds)
    {
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < milliseconds)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }

    static void* handle(int index = 0) { return CxCameraManager::instance()->openedCameras()[index]; }

    ViewerCamera* camera(int index = 0) { return delegate.cameras().cameras()[std::size_t(index)]; }

    void set(const char* name, const CxValue& value)
    {
        camera()->parameters()->setParamDirect(QString::fromUtf8(name), value, nullptr,
                                               ExCommitRefreshGuiMode::CommitAndRefresh);
    }

    void trigger(const char* mode) { set("trigger_mode", CxValue::fromString(QString::fromUtf8(mode))); }

    MainWindow window;
    ApplicationDelegate delegate{window};
};
