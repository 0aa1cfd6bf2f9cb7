#include "BenchHost.h"

namespace {

BenchHost* onlyHost = nullptr;
QString collected;

void drop(const QString& /*text*/, bool /*flag*/) {}

void collect(const QString& text, bool /*flag*/)
{
    collected += text;
}

} // namespace

BenchHost::BenchHost(const QString& pluginFile, const QString& pythonHome)
    : m_loader(pluginFile)
    , m_pythonHome(pythonHome)
    , m_plugin(qobject_cast<CxScriptLangInterface*>(m_loader.instance()))
{
    if (!m_plugin)
        qFatal("cannot load the plugin: %s", qPrintable(m_loader.errorString()));
    m_plugin->init();
    onlyHost = this;
}

BenchHost::~BenchHost()
{
    onlyHost = nullptr;
    delete m_loader.instance();
}

BenchHost& BenchHost::instance()
{
    return *onlyHost;
}

void BenchHost::run(const QString& script)
{
    const QString errors = runInto(script, drop);
    if (!errors.isEmpty())
        qFatal("the script failed: %s", qPrintable(errors));
}

QString BenchHost::printedBy(const QString& script)
{
    collected.clear();
    const QString errors = runInto(script, collect);
    if (!errors.isEmpty())
        qFatal("the script failed: %s", qPrintable(errors));
    return collected;
}

QString BenchHost::errorTextOf(const QString& script)
{
    return runInto(script, drop);
}

QString BenchHost::runInto(const QString& script, void (*output)(const QString&, bool))
{
    return m_plugin->runScript(script, &m_environment, m_pythonHome, nullptr, nullptr, output);
}
