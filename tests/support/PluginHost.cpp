#include "PluginHost.h"

#include "TestSettings.h"

QStringList PluginHost::output;
std::function<void(const QString&, bool)> PluginHost::onOutput;

namespace {

void collect(const QString& text, bool flag)
{
    PluginHost::output.append(text);
    if (PluginHost::onOutput)
        PluginHost::onOutput(text, flag);
}

} // namespace

PluginHost::PluginHost()
    : loader(TestSettings::pluginFile)
{
    onOutput = nullptr;
    restart();
}

PluginHost::~PluginHost()
{
    delete loader.instance();
}

void PluginHost::restart()
{
    if (plugin)
        delete loader.instance();
    plugin = qobject_cast<CxScriptLangInterface*>(loader.instance());
    if (!plugin)
        qFatal("cannot load the plugin: %s", qPrintable(loader.errorString()));
    plugin->init();
}

QString PluginHost::run(const QString& script)
{
    output.clear();
    return plugin->runScript(script, &environment, TestSettings::pythonHome, nullptr, nullptr, collect);
}
