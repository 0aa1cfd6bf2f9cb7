#include "ScriptRunner.h"

#include "CxImageData.h"
#include "CxScriptLangInterface.h"
#include "ScriptEnvironment.h"
#include "process/ProcessExit.h"
#include "process/UnwrittenErrors.h"
#include "stopping/PythonSide.h"
#include "stopping/ScriptInterrupt.h"

#include <QtCore/QDebug>

#include <unistd.h>

namespace {

ScriptRunner::Output theOutput;

void passOutput(const QString& text, bool /*isError*/)
{
    if (theOutput)
        theOutput(text);
}

void noteStart(void* /*unused*/, void* /*unused*/)
{
    if (ScriptInterrupt* interrupt = ScriptInterrupt::instance())
        interrupt->scriptStarted();
}

} // namespace

ScriptRunner::ScriptRunner(const QString& pythonHome, Output output)
    : m_pythonHome(pythonHome)
{
    theOutput = std::move(output);
}

ScriptRunner::~ScriptRunner()
{
    unload();
    theOutput = nullptr;
}

QString ScriptRunner::load(const QString& library)
{
    m_loader.setFileName(library);
    QObject* object = m_loader.instance();
    if (!object)
        return tr("Cannot load the script plugin: %1").arg(m_loader.errorString());
    m_language = qobject_cast<CxScriptLangInterface*>(object);
    if (!m_language)
        return tr("Cannot use the script plugin: %1 provides no script language").arg(library);
    m_language->init();
    return {};
}

QString ScriptRunner::language() const
{
    return m_language ? m_language->languageVersion() : QString();
}

void ScriptRunner::run(const QString& script, std::shared_ptr<ScriptEnvironment> environment)
{
    QString result;
    if (m_language) {
        if (ScriptInterrupt* interrupt = ScriptInterrupt::instance())
            interrupt->runBegins();
        ProcessExit::prepareScriptThread();
        prepare(*environment);
        result = m_language->runScript(script, environment.get(), m_pythonHome, &noteStart, nullptr, &passOutput);
        if (ProcessExit::isForkedChild())
            endChild(*environment);
        if (ScriptInterrupt* interrupt = ScriptInterrupt::instance())
            interrupt->scriptEnded();
        ProcessExit::restoreHandlers();
        m_environment = std::move(environment);
    }
    Q_EMIT ended(result);
}

void ScriptRunner::prepare(ScriptEnvironment& environment)
{
    PythonSide* python = PythonSide::instance();
    if (!python || !language().startsWith(QStringLiteral("Python ")))
        return;
    python->interpreterWillStart(m_loader.fileName());
    const QString preparation = python->preparation();
    if (preparation.isEmpty())
        return;
    const QString problem = m_language->runScript(preparation, &environment, m_pythonHome, nullptr, nullptr, nullptr);
    UnwrittenErrors::forget();
    if (problem.isEmpty())
        python->prepared();
    else
        qWarning().noquote() << "The window stands still while a script works:" << problem.trimmed();
}

void ScriptRunner::endChild(ScriptEnvironment& environment)
{
    if (PythonSide::instance() && language().startsWith(QStringLiteral("Python ")))
        m_language->runScript(PythonSide::endOfChild(), &environment, m_pythonHome, nullptr, nullptr, nullptr);
    _exit(0);
}

void ScriptRunner::publish(const QString& name, std::shared_ptr<CxImageData> image)
{
    if (!m_language)
        return;
    m_language->addImageVariable(name, image.get());
    m_published.push_back(std::move(image));
}

void ScriptRunner::unload()
{
    // Deleting the object ends the interpreter. The library stays loaded: an interpreter does not survive unloading.
    delete std::exchange(m_language, nullptr);
    m_published.clear();
    m_environment.reset();
}
