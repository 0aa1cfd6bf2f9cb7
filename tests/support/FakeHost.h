#pragma once

#include "CxImageData.h"
#include "CxMdiView.h"
#include "IxAppDelegate.h"
#include "IxScriptEnvironment.h"

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QStringList>

#include <functional>
#include <map>
#include <memory>

// A host without windows. It keeps views in memory and records the calls it gets.

/// A view in memory.
class FakeView : public CxMdiView
{
public:
    FakeView(std::unique_ptr<CxImageData> shown, const QString& name)
        : image(std::move(shown))
        , title(name)
    {
    }

    bool startVideoRecording(const QString& path) override
    {
        recordedTo = path;
        return canRecord;
    }
    void stopVideoRecording() override { ++recordingsStopped; }
    CxChainable* chainObject() override { return chain; }

    std::unique_ptr<CxImageData> image;
    QString title;
    bool canRecord = true;
    QString recordedTo;
    int recordingsStopped = 0;
    CxChainable* chain = nullptr;
    std::function<void()> closed;

protected:
    void doClose() override
    {
        if (const auto notify = closed)
            notify();
    }
};

/// The application. It is IxAppDelegate::instance() while it lives.
class FakeDelegate : public IxAppDelegate
{
public:
    FakeDelegate() { setInstance(this); }
    ~FakeDelegate() { setInstance(nullptr); }
    FakeDelegate(const FakeDelegate&) = delete;
    FakeDelegate& operator=(const FakeDelegate&) = delete;

    /// Adds a view and makes it the active one. Returns its identifier.
    int addView(std::unique_ptr<CxImageData> image, const QString& title = QString());

    QWidget* mainWindow() override { return window; }
    QMenu* menu(int kind) override { return kind == 3 ? scriptMenu : nullptr; }
    void showNotification(const QString& text) override { note("showNotification", text); }
    int activeViewId() override;
    void activateView(int id) override { note("activateView", QString::number(id)); }
    void tileViews() override { note("tileViews"); }
    void setFullScreen(bool on) override { note("setFullScreen", on ? "true" : "false"); }
    CxMdiView* view(int id) override;
    bool duplicateView(int id) override;
    bool setCameraAcquisition(bool start, void* camera) override;
    void restartCameraWithDefaults(void* camera) override;
    SxPicBuf* askUserCaptureImage(QWidget* parent, void* camera, QString* title, QString* message, bool optionGiven,
                                  int* option, int flags) override;
    bool openFile(const QString& path, bool activate) override;
    bool newViewWithImage(CxImageData* image, const QString& title) override;
    void setViewImage(int id, CxImageData* image) override;
    CxImageData* viewImage(int id) override;
    void playSound(const QString& path) override { note("playSound", path); }

    QStringList calls;   ///< "operation(arguments)" in the order of the calls
    QStringList lookups; ///< the same for calls that change nothing: activeViewId, view, viewImage
    std::map<int, std::unique_ptr<FakeView>> views;
    int active = -1;
    bool accepts = true; ///< the result of operations that may fail
    QWidget* window = nullptr;
    QMenu* scriptMenu = nullptr;
    std::function<void()> onCall; ///< called by every operation that `calls` records

    void note(const char* operation, const QString& arguments = QString());
    void note(const char* operation, const char* arguments) { note(operation, QString::fromLatin1(arguments)); }
};

/// The services of a run.
class FakeEnvironment : public IxScriptEnvironment
{
public:
    QList<SxApiParamDef>& apiParamDefs() override { return defs; }
    QList<SxApiParamEnumVal>& apiParamEnumVals() override { return enumVals; }
    bool isCameraParameter(const QString& name) override { return cameraParameters.contains(name); }
    QString workingDirectory() override { return directory; }
    QString resolveFilePath(const QString& path) override;
    bool isMainThread() override;
    void addMenuItem(QMenu* menu, const QString& name, const QString& script, const QString& extra) override;
    bool waitForNextFrame(CxMdiView* view, double timeout) override;
    void wait(double time) override;
    const char* functionHelp(const char* moduleName, const char* functionName) override;
    const char* methodHelp(const char* objectName, const char* methodName) override;

    QList<SxApiParamDef> defs;
    QList<SxApiParamEnumVal> enumVals;
    QStringList cameraParameters;
    QString directory = QDir::currentPath();
    QStringList calls;
    QStringList resolved;           ///< the paths given to resolveFilePath
    int threadQuestions = 0;        ///< calls of isMainThread
    bool otherThread = false;       ///< answers isMainThread as if it were called on another thread
    CxMdiView* waitedFor = nullptr; ///< the view of the latest waitForNextFrame
    QList<QMenu*> itemMenus;        ///< the menu of every item added
    bool frameComes = true;
    std::function<void(double)> onWait;
    std::map<QByteArray, QByteArray> help; ///< "module.function" or "object.method" to text
};

/// An image of any type of 1 or 2 bytes. Its values count up from 0, row by row, and wrap around.
std::unique_ptr<CxImageData> makeTestImage(unsigned width, unsigned height, unsigned channels = 1,
                                           ExImageDataType type = ExImageDataType::UInt8, unsigned bpc = 8,
                                           unsigned lineStride = 0);
