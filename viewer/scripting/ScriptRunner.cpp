#include "ScriptRunner.h"

#include "CxImageData.h"
#include "CxScriptLangInterface.h"
#include "ScriptEnvironment.h"
#include "ScriptFile.h"
#include "interpreter/InterpreterCalls.h"
#include "interpreter/PythonSide.h"
#include "interpreter/ReleasedInterpreter.h"
#include "process/ProcessExit.h"
#include "process/UnwrittenErrors.h"
#include "stopping/ScriptInterrupt.h"
#include "stopping/ScriptPulse.h"

#include <QtCore/QDebug>

#include <unistd.h>

namespace {

ScriptRunner::Output theOutput;

void passOutput(const QString& text, bool /*isError*/)
{
    if (theOutput)
        theOutput(text);
}

bool isPython(const QString& language)
{
    return language.startsWith(QStringLiteral("Python "));
}

constexpr int unknownOutcome = -1;

/// How a run ended, told from its errors.
ScriptOutcome outcomeFrom(const QString& result)
{
    if (result.isEmpty())
        return ScriptOutcome::Ran;
    const bool isInterrupt =
        ScriptInterrupt::wasInterrupted() && result.contains(QStringLiteral("\nKeyboardInterrupt"));
    return isInterrupt ? ScriptOutcome::Interrupted : ScriptOutcome::Failed;
}

void noteStart(void* /*unused*/, void* /*unused*/)
{
    if (ScriptInterrupt* interrupt = ScriptInterrupt::instance())
        interrupt->scriptStarted();
}

} // namespace

ScriptRunner::ScriptRunner(Settings settings, Output output)
    : m_settings(std::move(settings))
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

void ScriptRunner::run(const ScriptJob& job)
{
    QString result;
    int outcome = unknownOutcome; // a file that Python runs tells how it ended
    if (m_language) {
        m_betweenRuns.reset();
        if (ScriptInterrupt* interrupt = ScriptInterrupt::instance())
            interrupt->runBegins();
        ProcessExit::prepareScriptThread();
        QString text = job.text;
        if (!m_refusal.isEmpty()) {
            result = m_refusal + QLatin1Char('\n');
        } else if (isPython(language())) {
            result = prepare(*job.environment);
            if (!job.file.isEmpty())
                text = PythonSide::callFor(PythonSide::Call{.file = job.file,
                                                            .shownPath = job.shownPath,
                                                            .arguments = job.arguments,
                                                            .stays = m_settings.exitEndsScript,
                                                            .outcome = &outcome});
            else if (!job.title.isEmpty())
                text = PythonSide::callFor(PythonSide::TextCall{.text = job.text,
                                                                .title = job.title,
                                                                .file = job.origin,
                                                                .stays = m_settings.exitEndsScript,
                                                                .outcome = &outcome});
        } else if (!job.file.isEmpty()) {
            text = readScriptFile(job.file, result).value_or(QString());
        }
        if (result.isEmpty()) {
            result = m_language->runScript(text, job.environment.get(), m_settings.pythonHome, &noteStart, nullptr,
                                           m_settings.plainOutput ? nullptr : &passOutput);
            if (ProcessExit::isForkedChild())
                endChild(*job.environment, outcome == int(ScriptOutcome::Ran));
        }
        if (ScriptInterrupt* interrupt = ScriptInterrupt::instance())
            interrupt->scriptEnded();
        ProcessExit::restoreHandlers();
        m_environment = job.environment;
        m_betweenRuns = std::make_unique<ReleasedInterpreter>();
    }
    Q_EMIT ended(result, outcome == unknownOutcome ? int(outcomeFrom(result)) : outcome);
}

QString ScriptRunner::runOwn(const QString& text, ScriptEnvironment& environment)
{
    QString errors = m_language->runScript(text, &environment, m_settings.pythonHome, nullptr, nullptr, nullptr);
    UnwrittenErrors::forget();
    return errors;
}

QString ScriptRunner::prepare(ScriptEnvironment& environment)
{
    if (!m_isPrepared) {
        if (m_settings.exitEndsScript)
            InterpreterCalls::surviveSystemExit(m_loader.fileName());
        if (QString problem = runOwn(PythonSide::preparation(m_settings.environment), environment); !problem.isEmpty())
            return problem;
        m_isPrepared = true;
    }
    ScriptPulse* pulse = ScriptPulse::instance();
    const QString preparation = pulse ? pulse->preparation() : QString();
    if (preparation.isEmpty())
        return {};
    if (const QString problem = runOwn(preparation, environment); problem.isEmpty())
        pulse->prepared();
    else
        qWarning().noquote() << "The window stands still while a script works:" << problem.trimmed();
    return {};
}

void ScriptRunner::endChild(ScriptEnvironment& environment, bool succeeded)
{
    const int status = succeeded ? 0 : 1;
    if (isPython(language()))
        runOwn(PythonSide::endOfChild(status), environment);
    _exit(status);
}

void ScriptRunner::publish(const QString& name, std::shared_ptr<CxImageData> image)
{
    if (!m_language)
        return;
    m_betweenRuns.reset();
    m_language->addImageVariable(name, image.get());
    m_betweenRuns = std::make_unique<ReleasedInterpreter>();
    m_published.push_back(std::move(image));
}

void ScriptRunner::unload()
{
    m_betweenRuns.reset();
    // Deleting the object ends the interpreter. The library stays loaded: an interpreter does not survive unloading.
    delete std::exchange(m_language, nullptr);
    m_isPrepared = false;
    m_published.clear();
    m_environment.reset();
}
