#pragma once

#include "CxCameraManager.h"
#include "support/FakeCameraDevice.h"
#include "support/ListedCameras.h"
#include "support/PluginHost.h"

#include <initializer_list>
#include <string>
#include <utility>

/// A test with an interpreter and, at first, one fake camera that stands in the host's list.
class CameraScriptTest : public PluginTest
{
protected:
    CameraScriptTest()
    {
        host.environment.cameraParameters = QStringLiteral("exposure gain auto_exposure trigger_mode frame_count "
                                                           "cooling sensor_temperature nothing device_sn "
                                                           "device_model_id")
                                                .split(u' ');
        handle = add(parameters.get());
        host.run("");
    }

    void* add(CxCameraParameters* store) { return cameras.add(store); }

    /// What an expression gives with `cam` attached to the first camera and `loose` attached to none: its repr, or
    /// "Type: message" of what it raises, followed by " <- " and the same of the cause. A SystemError shows no message:
    /// the interpreter's wording differs by version.
    std::string value(const std::string& expression)
    {
        const std::string script = "cam = vantrel.Camera()\n"
                                   "loose = vantrel.Camera()\n"
                                   "cam.open_device()\n"
                                   "def told(error):\n"
                                   "    if isinstance(error, SystemError):\n"
                                   "        text = 'SystemError'\n"
                                   "    else:\n"
                                   "        text = type(error).__name__ + ': ' + str(error)\n"
                                   "    return text + (' <- ' + told(error.__cause__) if error.__cause__ else '')\n"
                                   "try:\n"
                                   "    print(repr(" +
                                   expression +
                                   "), end='')\n"
                                   "except BaseException as error:\n"
                                   "    print(told(error), end='')\n";
        const QString result = host.run(QString::fromStdString(script));
        return (host.printed() + result).toStdString();
    }

    /// Each row: an expression, and what value() gives for it.
    void expectValues(std::initializer_list<std::pair<std::string, std::string>> rows)
    {
        for (const auto& [expression, expected] : rows)
            EXPECT_EQ(value(expression), expected) << expression;
    }

    /// The stored value of a parameter.
    CxValue stored(const char* name) { return parameters->findParam(QString::fromUtf8(name), false)->paramValue(); }

    CxCameraManager* manager = CxCameraManager::instance();
    FakeCameraDevice device;
    std::unique_ptr<CxCameraParameters> parameters = makeFakeParameters(&device);
    void* handle = nullptr;

private:
    ListedCameras cameras;
};
