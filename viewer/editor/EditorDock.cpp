#include "EditorDock.h"

#include "EditorPage.h"
#include "Examples.h"
#include "FindBar.h"
#include "ScriptEditor.h"
#include "workshop/ErrorPlaces.h"
#include "workshop/Preferences.h"

#include <QtCore/QFileInfo>
#include <QtGui/QAction>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMenu>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QVBoxLayout>

#include <utility>

namespace {

const QString newText = QStringLiteral("import vantrel\n"
                                       "\n"
                                       "print(vantrel.get_active_view_id())\n");

constexpr int firstWidth = 560; // pixels

/// The first of the editing commands are those that a line of text has, too, with a separator between them.
constexpr int editingOfLines = 6;

} // namespace

EditorDock::EditorDock(EditorTabs::OpenDialog openDialog, QWidget* parent)
    : QDockWidget(tr("Editor"), parent)
    , m_openDialog(openDialog)
    , m_tabs(new EditorTabs(std::move(openDialog)))
    , m_findBar(new FindBar([this]() -> ScriptEditor* {
        EditorPage* page = m_tabs->current();
        return page ? &page->editor() : nullptr;
    }))
    , m_recent(new QMenu(tr("Recent Scri&pts"), this))
    , m_examples(new QMenu(tr("E&xamples"), this))
{
    setObjectName(QStringLiteral("editor"));
    createActions();
    auto* tools = new QToolBar;
    tools->setToolButtonStyle(Qt::ToolButtonTextOnly);
    for (QAction* action : m_scriptActions)
        if (action && action->property("inToolBar").toBool())
            tools->addAction(action);
    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(tools);
    layout->addWidget(m_tabs, 1);
    layout->addWidget(m_findBar);
    setWidget(content);
    for (QLineEdit* line : m_findBar->findChildren<QLineEdit*>())
        line->installEventFilter(this);
    m_examples->menuAction()->setVisible(!Examples::all().isEmpty());
    connect(m_recent, &QMenu::aboutToShow, this, &EditorDock::fillRecent);
    connect(m_examples, &QMenu::aboutToShow, this, &EditorDock::fillExamples);
    connect(m_tabs, &EditorTabs::fileUsed, this, &EditorDock::noteUse);
    connect(m_tabs, &EditorTabs::pagesChanged, this, &EditorDock::adopt);
    enableActions();
    hide();
}

void EditorDock::newScript()
{
    m_tabs->addNew({}, newText);
    show();
    raise();
}

void EditorDock::showLine(const QString& path, int line)
{
    EditorPage* page = m_tabs->find(path);
    if (!page)
        page = m_tabs->open(path);
    if (!page)
        return;
    show();
    raise();
    m_tabs->setCurrentWidget(page);
    page->editor().goToLine(line, true);
    page->editor().setFocus();
}

void EditorDock::run()
{
    EditorPage* page = m_tabs->current();
    if (!page)
        return;
    if (page->path().isEmpty())
        Q_EMIT runTextRequested(page->editor().text(), page->title(), page->origin());
    else if (page->isModified())
        m_tabs->save(page, [this, page] { Q_EMIT runFileRequested(page->path()); });
    else
        Q_EMIT runFileRequested(page->path());
}

void EditorDock::showRunning(const QString& pathOrTitle)
{
    const EditorPage* running = pathOrTitle.isEmpty() ? nullptr : m_tabs->find(pathOrTitle);
    if (running)
        running->editor().removeMarks();
    for (EditorPage* page : m_tabs->pages())
        if (page->isRunning() != (page == running))
            page->setRunning(page == running);
}

void EditorDock::showErrors(const QString& errors)
{
    for (const EditorPage* page : m_tabs->pages()) {
        const FileError error =
            errorInFile(errors, [this, page](const QString& name) { return m_tabs->find(name) == page; });
        if (error.line > 0)
            page->editor().showError(error.line, error.message);
    }
}

void EditorDock::goToLine()
{
    EditorPage* page = m_tabs->current();
    if (!page)
        return;
    auto* dialog = new QInputDialog(this);
    dialog->setWindowTitle(tr("Go to Line"));
    dialog->setLabelText(tr("Line (1 to %1):").arg(page->editor().lines()));
    dialog->setInputMode(QInputDialog::IntInput);
    dialog->setIntRange(1, page->editor().lines());
    int line = 0;
    int column = 0;
    page->editor().getCursorPosition(&line, &column);
    dialog->setIntValue(line + 1);
    connect(dialog, &QInputDialog::intValueSelected, page, [page](int chosen) {
        page->editor().goToLine(chosen);
        page->editor().setFocus();
    });
    m_openDialog(dialog);
}

void EditorDock::noteUse(const QString& path)
{
    Preferences::noteRecentScript(path);
    rememberOpen();
}

void EditorDock::rememberOpen()
{
    if (m_restoring)
        return;
    QStringList paths;
    for (const EditorPage* page : m_tabs->pages())
        if (!page->path().isEmpty())
            paths += page->path();
    Preferences::setOpenScripts(paths);
}

void EditorDock::restore()
{
    m_restoring = true;
    for (const QString& path : Preferences::openScripts())
        if (QFileInfo::exists(path))
            m_tabs->open(path);
    m_restoring = false;
    rememberOpen();
}

void EditorDock::adopt()
{
    const int zoom = Preferences::editorZoom();
    for (const EditorPage* page : m_tabs->pages()) {
        ScriptEditor& editor = page->editor();
        if (editor.property("adopted").toBool())
            continue;
        editor.setProperty("adopted", true);
        editor.installEventFilter(this);
        editor.zoomTo(zoom);
        connect(&editor, &ScriptEditor::zoomChanged, this, &EditorDock::changeZoom);
    }
    enableActions();
    rememberOpen();
}

void EditorDock::changeZoom(int steps)
{
    Preferences::setEditorZoom(steps);
    for (const EditorPage* page : m_tabs->pages())
        if (page->editor().zoom() != steps)
            page->editor().zoomTo(steps);
}

void EditorDock::enableActions()
{
    for (QAction* action : std::as_const(m_needPage))
        action->setEnabled(m_tabs->count() > 0);
}

void EditorDock::showEvent(QShowEvent* event)
{
    QDockWidget::showEvent(event);
    // Only where the user has not chosen a width yet. A line of a script has some 80 characters.
    auto* window = qobject_cast<QMainWindow*>(parentWidget());
    if (window && !std::exchange(m_wasShown, true) && Preferences::windowState().isEmpty())
        window->resizeDocks({this}, {firstWidth}, Qt::Horizontal);
}

bool EditorDock::eventFilter(QObject* object, QEvent* event)
{
    // The window's shortcuts come first, unless the widget with the focus says that it uses the keys.
    if (event->type() != QEvent::ShortcutOverride && event->type() != QEvent::KeyPress)
        return QDockWidget::eventFilter(object, event);
    const auto* key = static_cast<QKeyEvent*>(event); // NOLINT(cppcoreguidelines-pro-type-static-cast-downcast)
    const QKeySequence pressed(key->keyCombination());
    for (QAction* action : std::as_const(m_needPage)) {
        // A line of text undoes and copies its own.
        const bool isLine =
            qobject_cast<QLineEdit*>(object) && m_editingActions.mid(0, editingOfLines).contains(action);
        if (action->shortcutContext() != Qt::WidgetWithChildrenShortcut || action->shortcut() != pressed || isLine)
            continue;
        event->accept();
        if (event->type() == QEvent::KeyPress)
            action->trigger();
        return true;
    }
    return QDockWidget::eventFilter(object, event);
}
