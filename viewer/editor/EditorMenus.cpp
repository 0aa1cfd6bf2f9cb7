// The commands of the editor in the menus.

#include "EditorDock.h"
#include "EditorPage.h"
#include "Examples.h"
#include "FindBar.h"
#include "ScriptEditor.h"
#include "workshop/Preferences.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtGui/QAction>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

#include <utility>

namespace {

/// Calls a function with the editor of the script in front, if there is one.
template<void (QsciScintilla::*function)()>
void edit(EditorDock& dock)
{
    if (EditorPage* page = dock.tabs().current())
        (page->editor().*function)();
}

/// Calls a function with the script in front, if there is one.
template<void (EditorTabs::*function)(EditorPage*, const EditorTabs::Then&)>
void withPage(EditorDock& dock)
{
    if (EditorPage* page = dock.tabs().current())
        (dock.tabs().*function)(page, {});
}

} // namespace

QAction* EditorDock::add(const QString& text, const QKeySequence& key, void (EditorDock::*slot)())
{
    auto* action = new QAction(text, this);
    action->setShortcut(key);
    connect(action, &QAction::triggered, this, slot);
    m_scriptActions += action;
    return action;
}

QAction* EditorDock::addForEditor(const QString& text, const QKeySequence& key, void (*act)(EditorDock& dock))
{
    auto* action = new QAction(text, this);
    action->setShortcut(key);
    // The window uses some of these keys for its views: here they belong to the editor alone.
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(action, &QAction::triggered, this, [this, act] { act(*this); });
    m_needPage += action;
    return action;
}

void EditorDock::createActions()
{
    const auto inToolBar = [](QAction* action) { action->setProperty("inToolBar", true); };
    inToolBar(add(tr("&New Script"), QKeySequence::New, &EditorDock::newScript));
    auto* open = new QAction(tr("&Edit Script..."), this);
    open->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O));
    connect(open, &QAction::triggered, m_tabs, &EditorTabs::askToOpen);
    inToolBar(open);
    m_scriptActions += open;
    const auto addFile = [this](const QString& text, const QKeySequence& key, void (*act)(EditorDock&)) {
        m_scriptActions += addForEditor(text, key, act);
        return m_scriptActions.last();
    };
    inToolBar(addFile(tr("&Save Script"), QKeySequence::Save, withPage<&EditorTabs::save>));
    addFile(tr("Save Script &As..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S), withPage<&EditorTabs::saveAs>);
    addFile(tr("Save A&ll Scripts"), QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_S),
            [](EditorDock& dock) { dock.m_tabs->saveAll(); });
    addFile(tr("&Close Script"), QKeySequence(Qt::CTRL | Qt::Key_W), withPage<&EditorTabs::closePage>);
    m_scriptActions += nullptr;
    QAction* runAction = add(tr("Run E&dited Script"), QKeySequence(Qt::Key_F5), &EditorDock::run);
    runAction->setIconText(tr("Run"));
    runAction->setToolTip(tr("Save and run the script in front (F5)"));
    inToolBar(runAction);
    m_needPage += runAction;
    add(tr("Run A&gain"), QKeySequence(Qt::Key_F9), &EditorDock::runAgainRequested);

    const auto addEditing = [this](const QString& text, const QKeySequence& key, void (*act)(EditorDock&)) {
        m_editingActions += addForEditor(text, key, act);
    };
    addEditing(tr("&Undo"), QKeySequence::Undo, edit<&QsciScintilla::undo>);
    addEditing(tr("&Redo"), QKeySequence::Redo, edit<&QsciScintilla::redo>);
    m_editingActions += nullptr;
    addEditing(tr("Cu&t"), QKeySequence::Cut, edit<&QsciScintilla::cut>);
    addEditing(tr("&Copy"), QKeySequence::Copy, edit<&QsciScintilla::copy>);
    addEditing(tr("&Paste"), QKeySequence::Paste, edit<&QsciScintilla::paste>);
    m_editingActions += nullptr;
    addEditing(tr("&Find..."), QKeySequence::Find, [](EditorDock& dock) { dock.m_findBar->openToFind(); });
    addEditing(tr("Find &Next"), QKeySequence(Qt::Key_F3), [](EditorDock& dock) { dock.m_findBar->findNext(); });
    addEditing(tr("Find Pre&vious"), QKeySequence(Qt::SHIFT | Qt::Key_F3),
               [](EditorDock& dock) { dock.m_findBar->findPrevious(); });
    addEditing(tr("R&eplace..."), QKeySequence(Qt::CTRL | Qt::Key_H),
               [](EditorDock& dock) { dock.m_findBar->openToReplace(); });
    addEditing(tr("&Go to Line..."), QKeySequence(Qt::CTRL | Qt::Key_G), [](EditorDock& dock) { dock.goToLine(); });
    m_editingActions += nullptr;
    addEditing(tr("Co&mment or Uncomment"), QKeySequence(Qt::CTRL | Qt::Key_Slash), [](EditorDock& dock) {
        if (EditorPage* page = dock.m_tabs->current())
            page->editor().toggleComment();
    });
}

void EditorDock::addTo(QMenuBar& bar, QMenu& scriptMenu)
{
    QAction* first = scriptMenu.actions().value(0);
    for (QAction* action : std::as_const(m_scriptActions)) {
        if (action)
            scriptMenu.insertAction(first, action);
        else
            scriptMenu.insertSeparator(first);
        if (action && action->text() == tr("&Edit Script...")) {
            scriptMenu.insertMenu(first, m_recent);
            scriptMenu.insertMenu(first, m_examples);
        }
    }
    auto* editMenu = new QMenu(tr("&Edit"), &bar);
    for (QAction* action : std::as_const(m_editingActions)) {
        if (action)
            editMenu->addAction(action);
        else
            editMenu->addSeparator();
    }
    bar.insertMenu(bar.actions().value(1), editMenu);
}

void EditorDock::fillRecent()
{
    m_recent->clear();
    for (const QString& path : Preferences::recentScripts()) {
        QAction* action =
            m_recent->addAction(QDir::toNativeSeparators(path).replace(QLatin1Char('&'), QStringLiteral("&&")));
        action->setEnabled(QFileInfo::exists(path));
        connect(action, &QAction::triggered, this, [this, path] {
            if (m_tabs->open(path)) {
                show();
                raise();
            }
        });
    }
    if (m_recent->isEmpty())
        m_recent->addAction(tr("None yet"))->setEnabled(false);
}

void EditorDock::fillExamples()
{
    if (!m_examples->isEmpty())
        return;
    m_examples->setToolTipsVisible(true);
    for (const Example& example : Examples::all()) {
        QAction* action = m_examples->addAction(example.title);
        action->setToolTip(example.summary);
        connect(action, &QAction::triggered, this, [this, path = example.path] {
            m_tabs->addNew(QFileInfo(path).fileName(), Examples::textOf(path), path);
            show();
            raise();
        });
    }
}
