#include "PluginHost.h"

#include "TestSettings.h"

#include <utility>

QStringList PluginHost::output;
std::function<void(const QString&, bool)> PluginHost::onOutput;

namespace {

bool sharedLives = false;

void collect(const QString& text, bool flag)
{
    PluginHost::output.append(text);
    if (PluginHost::onOutput)
        PluginHost::onOutput(text, flag);
}

} // namespace

PluginHost::PluginHost(Interpreter interpreter)
    : loader(TestSettings::pluginFile)
    , m_interpreter(interpreter)
{
    onOutput = nullptr;
    load();
    if (interpreter == OfItsOwn || !sharedLives)
        plugin->init();
    sharedLives = interpreter == Shared;
}

PluginHost::~PluginHost()
{
    if (m_interpreter == OfItsOwn) {
        delete loader.instance();
        return;
    }
    // The interpreter keeps the frames of the latest exception, and with them the images of their variables.
    run(QStringLiteral("import gc, sys\n"
                       "sys.last_type = sys.last_value = sys.last_traceback = None\n"
                       "gc.collect()\n"));
}

void PluginHost::endShared()
{
    if (std::exchange(sharedLives, false))
        delete QPluginLoader(TestSettings::pluginFile).instance();
}

void PluginHost::restart()
{
    delete loader.instance();
    load();
    plugin->init();
}

void PluginHost::load()
{
    plugin = qobject_cast<CxScriptLangInterface*>(loader.instance());
    if (!plugin)
        qFatal("cannot load the plugin: %s", qPrintable(loader.errorString()));
}

QString PluginHost::run(const QString& script)
{
    output.clear();
    return plugin->runScript(script, &environment, TestSettings::pythonHome, nullptr, nullptr, collect);
}
