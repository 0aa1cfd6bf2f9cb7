// The minimum that an application needs to run scripts: a host without windows that holds one image.

#include <vantrel/CxImageData.h>
#include <vantrel/CxScriptLangInterface.h>
#include <vantrel/IxAppDelegate.h>
#include <vantrel/IxScriptEnvironment.h>

#include <QtCore/QDir>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QPluginLoader>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <memory>

namespace {

/// One image in memory stands for the application's only view, number 0. The other operations do nothing or fail.
class Application : public IxAppDelegate
{
public:
    Application() { setInstance(this); }
    ~Application() { setInstance(nullptr); }

    QWidget* mainWindow() override { return nullptr; }
    QMenu* menu(int) override { return nullptr; }
    void showNotification(const QString& text) override { std::printf("[%s]\n", qPrintable(text)); }
    int activeViewId() override { return m_shown ? 0 : -1; }
    void activateView(int) override {}
    void tileViews() override {}
    void setFullScreen(bool) override {}
    CxMdiView* view(int) override { return nullptr; }
    bool duplicateView(int) override { return false; }
    bool setCameraAcquisition(bool, void*) override { return false; }
    void restartCameraWithDefaults(void*) override {}
    SxPicBuf* askUserCaptureImage(QWidget*, void*, QString*, QString*, bool, int*, int) override { return nullptr; }
    bool openFile(const QString&, bool) override { return false; }
    bool newViewWithImage(CxImageData* image, const QString& title) override
    {
        m_shown.reset(image); // the host owns it now
        std::printf("showing \"%s\", %u x %u pixels\n", qPrintable(title), image->picBuf()->width,
                    image->picBuf()->height);
        return true;
    }
    void setViewImage(int, CxImageData* image) override { m_shown.reset(image); }
    CxImageData* viewImage(int id) override { return id == 0 ? m_shown.get() : nullptr; }
    void playSound(const QString&) override {}

private:
    std::unique_ptr<CxImageData> m_shown;
};

/// The services of a run. Relative paths start at the current directory.
class Environment : public IxScriptEnvironment
{
public:
    QList<SxApiParamDef>& apiParamDefs() override { return m_texts; }
    QList<SxApiParamEnumVal>& apiParamEnumVals() override { return m_numbers; }
    bool isCameraParameter(const QString&) override { return false; }
    QString workingDirectory() override { return QDir::currentPath(); }
    QString resolveFilePath(const QString& path) override { return QDir::current().absoluteFilePath(path); }
    bool isMainThread() override { return QThread::currentThread() == qApp->thread(); }
    void addMenuItem(QMenu*, const QString&, const QString&, const QString&) override {}
    bool waitForNextFrame(CxMdiView*, double) override { return false; }
    void wait(double time) override
    {
        QEventLoop loop;
        QTimer::singleShot(int(time * 1000.0), &loop, &QEventLoop::quit);
        loop.exec();
    }
    const char* functionHelp(const char*, const char*) override { return nullptr; }
    const char* methodHelp(const char*, const char*) override { return nullptr; }

private:
    QList<SxApiParamDef> m_texts;
    QList<SxApiParamEnumVal> m_numbers = {{QStringLiteral("ANSWER"), 42}};
};

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QPluginLoader loader(QStringLiteral(PLUGIN_FILE));
    auto* language = qobject_cast<CxScriptLangInterface*>(loader.instance());
    QFile file(application.arguments().value(1));
    if (!language || !file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s\n", qPrintable(language ? file.errorString() : loader.errorString()));
        return 2;
    }
    language->init();

    Application delegate;
    Environment environment;
    const QString errors =
        language->runScript(QString::fromUtf8(file.readAll()), &environment, QStringLiteral(PYTHON_HOME), nullptr,
                            nullptr, [](const QString& text, bool) { std::fputs(qPrintable(text), stdout); });
    std::fputs(qPrintable(errors), stderr);

    delete loader.instance(); // ends the interpreter while delegate and environment still exist
    return errors.isEmpty() ? 0 : 1;
}
