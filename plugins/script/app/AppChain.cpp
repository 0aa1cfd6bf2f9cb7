// Stages that scripts insert into the processing chain of the active view.

#include "AppFunctions.h"
#include "CxChain.h"
#include "CxChainManager.h"
#include "CxChainable.h"
#include "CxMdiView.h"
#include "CxRTTI.h"
#include "IxAppDelegate.h"
#include "support/PyRef.h"

#include <QtXml/QDomDocument>
#include <QtXml/QDomElement>

#include <memory>
#include <optional>

namespace {

bool hasTypeFlag(PyObject* object, unsigned long flag)
{
    return (PyType_GetFlags(Py_TYPE(object)) & flag) != 0;
}

/// The text of a str; none for other objects and for a str that has no UTF-8 form. No error is left.
std::optional<QString> textOf(PyObject* object)
{
    if (!hasTypeFlag(object, Py_TPFLAGS_UNICODE_SUBCLASS))
        return std::nullopt;
    const PyRef utf8 = PyRef::take(PyUnicode_AsUTF8String(object));
    if (!utf8) {
        PyErr_Clear();
        return std::nullopt;
    }
    return QString::fromUtf8(PyBytes_AsString(utf8.get()), PyBytes_Size(utf8.get()));
}

/// Stores one entry of a configuration, or leaves it out when its value is of no kind that a stage could read.
void addAttribute(QDomElement& conf, const QString& name, PyObject* value)
{
    if (hasTypeFlag(value, Py_TPFLAGS_LONG_SUBCLASS)) {
        // Cut to the low 32 bits, however large the integer is. Nothing is raised.
        conf.setAttribute(name, int(PyLong_AsUnsignedLongLongMask(value)));
    } else if (PyType_IsSubtype(Py_TYPE(value), &PyFloat_Type)) {
        conf.setAttribute(name, PyFloat_AsDouble(value));
    } else if (const std::optional<QString> text = textOf(value)) {
        conf.setAttribute(name, *text);
    }
}

/// Fills the element from a script's configuration; false with an error set when that is no dictionary.
bool fillConfig(QDomElement& conf, PyObject* config)
{
    if (!hasTypeFlag(config, Py_TPFLAGS_DICT_SUBCLASS)) {
        PyErr_SetString(PyExc_Exception, "Config parameter is not of the dictionary type");
        return false;
    }
    // Nothing in this loop runs a script's code, which could change the dictionary meanwhile.
    Py_ssize_t position = 0;
    PyObject* key = nullptr;
    PyObject* value = nullptr;
    while (PyDict_Next(config, &position, &key, &value)) {
        if (const std::optional<QString> name = textOf(key))
            addAttribute(conf, *name, value);
    }
    return true;
}

/// A new stage by the name that a user knows, and null for an unknown name or a class that gives no stage.
std::unique_ptr<CxChainable> createStage(const QString& name)
{
    const CxRTTI& registry = *CxRTTI::instance();
    for (const QString& className : registry.classesForInterface(QStringLiteral("CxChainable"), true)) {
        if (registry.customNameForClass(className).compare(name, Qt::CaseInsensitive) != 0)
            continue;
        std::unique_ptr<QObject> object(registry.createInstanceOfClass(className));
        auto* stage = qobject_cast<CxChainable*>(object.get());
        if (stage)
            static_cast<void>(object.release());
        return std::unique_ptr<CxChainable>(stage);
    }
    return nullptr;
}

} // namespace

PyObject* fx_pyapp_AddChainObject(PyObject* /*module*/, PyObject* args)
{
    const char* name = nullptr;
    PyObject* config = nullptr;
    IxAppDelegate* delegate = fx_app_enter(args, "s|O", &name, &config);
    if (!delegate)
        return nullptr;

    QDomDocument document;
    QDomElement conf = document.createElement(QStringLiteral("conf"));
    document.appendChild(conf);
    if (config && !fillConfig(conf, config))
        return nullptr;

    std::unique_ptr<CxChainable> stage = createStage(QString::fromUtf8(name));
    if (!stage) {
        PyErr_SetString(PyExc_Exception, "Cannot find chain object class");
        return nullptr;
    }
    CxMdiView* view = delegate->view(delegate->activeViewId());
    if (!view) {
        PyErr_SetString(PyExc_Exception, "No active view");
        return nullptr;
    }
    CxChainable* viewObject = view->chainObject();
    CxChain* chain = viewObject ? viewObject->chain() : nullptr;
    if (!chain)
        return nullptr;

    const bool wasRunning = !chain->stopped();
    if (wasRunning)
        chain->stop();
    // A host exception from here leaves the chain stopped: it must not work on with half a change.
    stage->readConfig(conf);
    stage->setEnabled(true);
    // The answer decides only who owns the stage: the script learns nothing of it. An object that is in a chain belongs
    // to that chain, whichever it is.
    const bool inserted = CxChainManager::instance()->insertBefore(chain, stage.get(), viewObject);
    if (inserted || stage->chain())
        static_cast<void>(stage.release());
    if (wasRunning)
        chain->start();
    return fx_app_none();
}
