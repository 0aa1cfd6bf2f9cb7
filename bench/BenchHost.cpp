#include "BenchHost.h"

namespace {

BenchHost* onlyHost = nullptr;
QString collected;

void drop(const QString& /*text*/, bool /*flag*/) {}

void collect(const QString& text, bool /*flag*/)
{
    collected += text;
}

void keepLast(const QString& text, bool /*flag*/)
{
    if (text != QLatin1Char('\n'))
        collected = text;
}

} // namespace

BenchHost::BenchHost(const QString& pluginFile, const QString& pythonHome)
    : m_loader(pluginFile)
    , m_pythonHome(pythonHome)
    , m_plugin(qobject_cast<CxScriptLangInterface*>(m_loader.instance()))
{
    if (!m_plugin)
        qFatal("the plugin does not load: %s", qPrintable(m_loader.errorString()));
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
    runInto(script, drop);
}

QString BenchHost::printedBy(const QString& script)
{
    collected.clear();
    runInto(script, collect);
    return collected;
}

QString BenchHost::lastTextOf(const QString& script)
{
    runInto(script, keepLast);
    return collected;
}

void BenchHost::runInto(const QString& script, void (*output)(const QString&, bool))
{
    const QString result = m_plugin->runScript(script, &m_environment, m_pythonHome, nullptr, nullptr, output);
    if (!result.isEmpty())
        qFatal("the script failed: %s", qPrintable(result));
}
