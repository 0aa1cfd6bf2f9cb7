// Stages that scripts insert into the processing chain of the active view.

#include "AppFunctions.h"
#include "CxChain.h"
#include "CxChainManager.h"
#include "CxChainable.h"
#include "CxMdiView.h"
#include "CxRTTI.h"
#include "IxAppDelegate.h"
#include "TakeAs.h"

#include <QtXml/QDomDocument>
#include <QtXml/QDomElement>

#include <memory>
#include <optional>

namespace {

/// Stores one entry of a configuration. Omits an entry whose value has a type that a stage cannot read.
void addAttribute(QDomElement& conf, const QString& name, PyObject* value)
{
    if (fx_isInteger(value)) {
        // Keeps the low 32 bits of an integer of any size. Raises nothing.
        conf.setAttribute(name, int(PyLong_AsUnsignedLongLongMask(value)));
    } else if (fx_isFloat(value)) {
        conf.setAttribute(name, PyFloat_AsDouble(value));
    } else if (const std::optional<QString> text = fx_textOf(value)) {
        conf.setAttribute(name, *text);
    }
}

/// Fills the element from a script's configuration. Returns false with an error set if config is not a dictionary.
bool fillConfig(QDomElement& conf, PyObject* config)
{
    if (!fx_isDict(config)) {
        fx_raise("Config parameter is not of the dictionary type");
        return false;
    }
    // Nothing in this loop runs a script's code, so the dictionary does not change.
    Py_ssize_t position = 0;
    PyObject* key = nullptr;
    PyObject* value = nullptr;
    while (PyDict_Next(config, &position, &key, &value)) {
        if (const std::optional<QString> name = fx_textOf(key))
            addAttribute(conf, *name, value);
    }
    return true;
}

/// Creates a stage from its display name. Null if the name is unknown or its class does not create a stage.
std::unique_ptr<CxChainable> createStage(const QString& name)
{
    const CxRTTI& registry = *CxRTTI::instance();
    for (const QString& className : registry.classesForInterface(QStringLiteral("CxChainable"), true)) {
        if (registry.customNameForClass(className).compare(name, Qt::CaseInsensitive) != 0)
            continue;
        return takeAs<CxChainable>(registry.createInstanceOfClass(className));
    }
    return nullptr;
}

} // namespace

PyObject* fx_pyapp_AddChainObject(PyObject* /*module*/, PyObject* args)
{
    const char* name = nullptr;
    PyObject* config = nullptr;
    IxAppDelegate* delegate = fx_enter(args, "s|O", &name, &config);
    if (!delegate)
        return nullptr;

    QDomDocument document;
    QDomElement conf = document.createElement(QStringLiteral("conf"));
    document.appendChild(conf);
    if (config && !fillConfig(conf, config))
        return nullptr;

    std::unique_ptr<CxChainable> stage = createStage(QString::fromUtf8(name));
    if (!stage)
        return fx_raise("Cannot find chain object class");
    CxMdiView* view = delegate->view(delegate->activeViewId());
    if (!view)
        return fx_raise("No active view");
    CxChainable* viewObject = view->chainObject();
    CxChain* chain = viewObject ? viewObject->chain() : nullptr;
    if (!chain)
        return nullptr;

    const bool wasRunning = !chain->stopped();
    if (wasRunning)
        chain->stop();
    // If the host throws from here on, the chain stays stopped: it must not run with half a change.
    stage->readConfig(conf);
    stage->setEnabled(true);
    // The result only decides who owns the stage; the script does not see it. A chain owns the stages in it, even if it
    // is another chain than this one.
    const bool inserted = CxChainManager::instance()->insertBefore(chain, stage.get(), viewObject);
    if (inserted || stage->chain())
        static_cast<void>(stage.release());
    if (wasRunning)
        chain->start();
    return fx_none();
}
