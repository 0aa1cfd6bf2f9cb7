#include "HostContext.h"

#include "Convert.h"
#include "IxAppDelegate.h"
#include "IxScriptEnvironment.h"

IxScriptEnvironment* g_pScriptPlugin = nullptr;

void fx_addHelp(const char* moduleName, PyMethodDef* moduleFuncs, const char* objectName, PyMethodDef* objectMethods)
{
    if (!g_pScriptPlugin)
        return;
    if (moduleName && moduleFuncs) {
        for (PyMethodDef* entry = moduleFuncs; entry->ml_name; ++entry)
            entry->ml_doc = g_pScriptPlugin->functionHelp(moduleName, entry->ml_name);
    }
    if (objectName && objectMethods) {
        for (PyMethodDef* entry = objectMethods; entry->ml_name; ++entry)
            entry->ml_doc = g_pScriptPlugin->methodHelp(objectName, entry->ml_name);
    }
}

bool fx_onMainThread(const char* message)
{
    if (g_pScriptPlugin && g_pScriptPlugin->isMainThread())
        return true;
    fx_raise(message);
    return false;
}

IxAppDelegate* fx_delegate()
{
    IxAppDelegate* delegate = IxAppDelegate::instance();
    if (!delegate)
        fx_raise("the host application is not available");
    return delegate;
}

QString fx_resolvePath(const char* utf8)
{
    const QString path = QString::fromUtf8(utf8);
    return g_pScriptPlugin ? g_pScriptPlugin->resolveFilePath(path) : path;
}
