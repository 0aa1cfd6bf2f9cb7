#include "ScriptEnvironment.h"

#include "ScriptConstants.h"
#include "ScriptWait.h"
#include "scripting/help/HelpTexts.h"
#include "views/ImageView.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QThread>
#include <QtGui/QAction>
#include <QtWidgets/QMenu>

ScriptEnvironment::ScriptEnvironment(const QString& workingDirectory, RunFile runFile)
    : m_guiThread(QThread::currentThread())
    , m_workingDirectory(QDir(workingDirectory).absolutePath())
    , m_runFile(std::move(runFile))
    , m_parameterNames(ScriptConstants::parameterNames())
    , m_pixelTypes(ScriptConstants::pixelTypes())
{
}

QList<IxScriptEnvironment::SxApiParamDef>& ScriptEnvironment::apiParamDefs()
{
    return m_parameterNames;
}

QList<IxScriptEnvironment::SxApiParamEnumVal>& ScriptEnvironment::apiParamEnumVals()
{
    return m_pixelTypes;
}

bool ScriptEnvironment::isCameraParameter(const QString& name)
{
    return ScriptConstants::isCameraParameter(name);
}

QString ScriptEnvironment::workingDirectory()
{
    return m_workingDirectory;
}

QString ScriptEnvironment::resolveFilePath(const QString& path)
{
    if (path.isEmpty())
        return path;
    return QDir::cleanPath(QDir(m_workingDirectory).absoluteFilePath(path));
}

bool ScriptEnvironment::isMainThread()
{
    return QThread::currentThread() == m_guiThread;
}

void ScriptEnvironment::addMenuItem(QMenu* menu, const QString& name, const QString& script, const QString& extra)
{
    if (!menu)
        return;
    QAction* action = menu->addAction(name);
    action->setToolTip(extra.isEmpty() ? name : extra);
    action->setStatusTip(extra);
    menu->setToolTipsVisible(true);
    // The item may outlive this environment, so it holds copies.
    QObject::connect(action, &QAction::triggered, menu,
                     [path = resolveFilePath(script), run = m_runFile] { run(path); });
}

bool ScriptEnvironment::waitForNextFrame(CxMdiView* view, double timeout)
{
    auto* imageView = dynamic_cast<ImageView*>(view);
    return imageView && isMainThread() && ScriptWait::forImage(*imageView, timeout);
}

void ScriptEnvironment::wait(double time)
{
    ScriptWait::forTime(time);
}

const char* ScriptEnvironment::functionHelp(const char* moduleName, const char* functionName)
{
    return HelpTexts::instance().function(moduleName, functionName);
}

const char* ScriptEnvironment::methodHelp(const char* objectName, const char* methodName)
{
    return HelpTexts::instance().method(objectName, methodName);
}
