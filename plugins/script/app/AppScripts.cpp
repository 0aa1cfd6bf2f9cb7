// Scripts and menus: menu items that run a script, script files, the working directory, and sounds.

#include "AppFunctions.h"
#include "IxAppDelegate.h"
#include "IxScriptEnvironment.h"
#include "ScriptModule.h"

#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtWidgets/QMenu>

#include <algorithm>

// The kind of menu to which scripts add their items.
static constexpr int scriptMenuKind = 3;

// The limit for scripts within scripts. The interpreter's recursion limit is reached later and leaves no room to
// print the error.
static constexpr int maxNestedScripts = 200;

namespace {

thread_local int nestedScripts = 0;

/// Counts a script while it runs.
class NestedScript
{
public:
    NestedScript() { ++nestedScripts; }
    ~NestedScript() { --nestedScripts; }
    Q_DISABLE_COPY_MOVE(NestedScript)
};

/// Runs the text of a script file. Prints every error, even if the text cannot run at all.
void runText(const QByteArray& text)
{
    if (nestedScripts >= maxNestedScripts) {
        PyErr_SetString(PyExc_RecursionError, "too many scripts run within scripts");
        PyErr_Print();
    } else {
        const NestedScript nested;
        fx_script_runText(text.toStdString());
    }
}

} // namespace

static QMenu* findOrAddSubmenu(QMenu& menu, const QString& title)
{
    const QList<QMenu*> submenus = menu.findChildren<QMenu*>();
    const auto found =
        std::find_if(submenus.begin(), submenus.end(), [&title](const QMenu* sub) { return sub->title() == title; });
    return found != submenus.end() ? *found : menu.addMenu(title);
}

PyObject* fx_pyapp_AddMenuItem(PyObject* /*module*/, PyObject* args)
{
    const char* name = nullptr;
    const char* script = nullptr;
    const char* submenu = nullptr;
    const char* extra = nullptr;
    IxAppDelegate* delegate = fx_enter(args, "ss|ss", &name, &script, &submenu, &extra);
    QMenu* menu = delegate ? delegate->menu(scriptMenuKind) : nullptr;
    if (!menu)
        return nullptr;
    if (submenu && *submenu)
        menu = findOrAddSubmenu(*menu, QString::fromUtf8(submenu));
    g_pScriptPlugin->addMenuItem(menu, QString::fromUtf8(name), QString::fromUtf8(script), QString::fromUtf8(extra));
    return fx_none();
}

PyObject* fx_pyapp_RunScript(PyObject* /*module*/, PyObject* args)
{
    const char* path = nullptr;
    if (!PyArg_ParseTuple(args, "s", &path))
        return nullptr;
    QFile file(fx_resolvePath(path));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return fx_raise("given script file can't be opened.");
    const QByteArray text = file.readAll();
    file.close();
    runText(text);
    return fx_none();
}

PyObject* fx_pyapp_GetWorkingDirectory(PyObject* /*module*/, PyObject* /*args*/)
{
    return fx_text(g_pScriptPlugin ? g_pScriptPlugin->workingDirectory() : QString());
}

PyObject* fx_pyapp_PlaySound(PyObject* /*module*/, PyObject* args)
{
    const char* path = nullptr;
    if (!PyArg_ParseTuple(args, "s", &path))
        return nullptr;
    const QString resolved = fx_resolvePath(path);
    IxAppDelegate* delegate = fx_delegate();
    if (!delegate)
        return nullptr;
    delegate->playSound(resolved);
    return fx_none();
}
