// A script language without an interpreter. It behaves towards the host as a real one does: it takes the signals of
// stops over when it starts, and calls the host back on the thread that runs the script.
//
// Each line of a script is a command with at most one argument:
//
//   print TEXT     writes TEXT to the output
//   fail TEXT      writes TEXT to the result
//   compute        works until it is interrupted
//   pause SECONDS  lets the host wait
//   start INDEX    starts a camera
//   stop INDEX     stops a camera
//   look COUNT     reads the active view's image that many times
//   stare          reads the active view's image until no view is active
//   expose COUNT   sets the exposure of the first camera that many times, and reads it back
//   watch COUNT    reads parameters of the first camera that many times, whether it is there or not
//
// A command that finds itself interrupted ends the run with the result "interrupted".

#include "CxCameraManager.h"
#include "CxCameraParameters.h"
#include "CxImageData.h"
#include "CxScriptLangInterface.h"
#include "IxAppDelegate.h"
#include "IxScriptEnvironment.h"

#include <QtCore/QObject>

#include <csignal>
#include <unistd.h>
#include <utility>

namespace {

volatile std::sig_atomic_t interruptPending = 0;

void noteInterrupt(int /*number*/)
{
    interruptPending = 1;
}

void* cameraHandle(const QString& index)
{
    return CxCameraManager::instance()->openedCameras().value(index.toInt());
}

/// Reads every pixel of what the active view shows. False if a pixel row changes under the reader's hands.
bool lookAtActiveView()
{
    IxAppDelegate* application = IxAppDelegate::instance();
    CxImageData* image = application->viewImage(application->activeViewId());
    if (!image)
        return true;
    const SxPicBuf& buffer = *image->picBuf();
    unsigned sums[2] = {};
    for (unsigned& sum : sums)
        for (unsigned y = 0; y < buffer.height; ++y)
            sum += buffer.row(y)[0];
    return sums[0] == sums[1];
}

bool setExposure(int microseconds)
{
    CxCameraParameters* parameters = CxCameraManager::instance()->cameraParameters(cameraHandle(QStringLiteral("0")));
    CxValue value;
    return parameters->setParamDirect(QStringLiteral("exposure"), CxValue::fromInt(microseconds), nullptr,
                                      ExCommitRefreshGuiMode::CommitAndRefresh) &&
           parameters->getParamDirect(QStringLiteral("exposure"), value, nullptr) && value.toInt() == microseconds;
}

void readParameters()
{
    CxCameraParameters* parameters = CxCameraManager::instance()->cameraParameters(cameraHandle(QStringLiteral("0")));
    CxValue value;
    if (parameters)
        for (const char* name : {"exposure", "sensor_temperature"})
            parameters->getParamDirect(QString::fromUtf8(name), value, nullptr);
}

} // namespace

class FakeLanguage : public QObject, public CxScriptLangInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.tesmo.Vantrel.FakeLanguage")
    Q_INTERFACES(CxScriptLangInterface)
public:
    bool init() override { return true; }
    QString languageVersion() override { return QStringLiteral("Fake 1"); }
    void addImageVariable(const QString& name, CxImageData* image) override
    {
        m_published += QStringLiteral("%1 %2x%3\n").arg(name).arg(image->picBuf()->width).arg(image->picBuf()->height);
    }

    QString runScript(const QString& script, IxScriptEnvironment* environment, const QString& /*home*/,
                      void (*started)(void*, void*), void* data, void (*output)(const QString&, bool)) override
    {
        if (!m_started) {
            std::signal(SIGINT, noteInterrupt);
            std::signal(SIGURG, noteInterrupt);
        }
        m_started = true;
        interruptPending = 0;
        started(nullptr, data);
        m_result = std::exchange(m_published, QString());
        for (const QString& line : script.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            perform(line.section(QLatin1Char(' '), 0, 0), line.section(QLatin1Char(' '), 1), *environment, output);
            if (interruptPending)
                return m_result + QStringLiteral("interrupted");
        }
        return m_result;
    }

private:
    void perform(const QString& command, const QString& argument, IxScriptEnvironment& environment,
                 void (*output)(const QString&, bool))
    {
        bool done = true;
        if (command == QStringLiteral("print"))
            output(argument, false);
        else if (command == QStringLiteral("fail"))
            m_result += argument;
        else if (command == QStringLiteral("compute"))
            while (!interruptPending)
                usleep(100); // a call at which the thread sanitizer lets signals through
        else if (command == QStringLiteral("pause"))
            environment.wait(argument.toDouble());
        else if (command == QStringLiteral("start"))
            done = IxAppDelegate::instance()->setCameraAcquisition(true, cameraHandle(argument));
        else if (command == QStringLiteral("stop"))
            done = IxAppDelegate::instance()->setCameraAcquisition(false, cameraHandle(argument));
        else if (command == QStringLiteral("look"))
            for (int i = 0; i < argument.toInt() && done; ++i)
                done = lookAtActiveView();
        else if (command == QStringLiteral("stare"))
            while (IxAppDelegate::instance()->activeViewId() >= 0 && done)
                done = lookAtActiveView();
        else if (command == QStringLiteral("expose"))
            for (int i = 0; i < argument.toInt() && done; ++i)
                done = setExposure(100 + i);
        else if (command == QStringLiteral("watch"))
            for (int i = 0; i < argument.toInt(); ++i)
                readParameters();
        else
            done = false;
        if (!done)
            m_result += QStringLiteral("cannot do %1 %2\n").arg(command, argument);
    }

    bool m_started = false;
    QString m_published;
    QString m_result;
};

#include "FakeLanguage.moc"
