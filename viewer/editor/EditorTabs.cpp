#include "EditorTabs.h"

#include "EditorPage.h"
#include "ScriptEditor.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

#include <utility>

namespace {

/// Writers replace a file in several steps; they are over after this time, in milliseconds.
constexpr int writersPause = 200;

void call(const EditorTabs::Then& then)
{
    if (then)
        then();
}

QString scriptFilter()
{
    return EditorTabs::tr("Scripts (*.py);;All files (*)");
}

} // namespace

EditorTabs::EditorTabs(OpenDialog openDialog)
    : m_openDialog(std::move(openDialog))
{
    setObjectName(QStringLiteral("editorTabs"));
    setDocumentMode(true);
    setTabsClosable(true);
    setMovable(true);
    m_lookTimer.setSingleShot(true);
    m_lookTimer.setInterval(writersPause);
    connect(&m_lookTimer, &QTimer::timeout, this, &EditorTabs::lookForChanges);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, &m_lookTimer, qOverload<>(&QTimer::start));
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive)
            lookForChanges();
    });
    connect(this, &QTabWidget::currentChanged, this, &EditorTabs::pagesChanged);
    connect(this, &QTabWidget::tabCloseRequested, this, [this](int index) { closePage(pages().at(index)); });
}

EditorPage* EditorTabs::current() const
{
    return qobject_cast<EditorPage*>(currentWidget());
}

EditorPage* EditorTabs::find(const QString& pathOrTitle) const
{
    const QString path = QFileInfo(pathOrTitle).canonicalFilePath();
    for (EditorPage* page : pages())
        if (page->path().isEmpty() ? page->title() == pathOrTitle : page->path() == path)
            return page;
    return nullptr;
}

QList<EditorPage*> EditorTabs::pages() const
{
    QList<EditorPage*> all;
    for (int i = 0; i < count(); ++i)
        all += qobject_cast<EditorPage*>(widget(i));
    return all;
}

EditorPage* EditorTabs::addNew(const QString& title, const QString& text, const QString& origin)
{
    auto* page = new EditorPage(title.isEmpty() ? tr("Untitled %1").arg(++m_untitled) : title, text, origin);
    add(page);
    return page;
}

EditorPage* EditorTabs::open(const QString& path)
{
    EditorPage* page = QFileInfo::exists(path) ? find(path) : nullptr;
    if (!page) {
        QString problem;
        page = EditorPage::opened(path, problem);
        if (!page) {
            warn(tr("Cannot open %1: %2.").arg(QDir::toNativeSeparators(path), problem));
            return nullptr;
        }
        add(page);
    }
    setCurrentWidget(page);
    Q_EMIT fileUsed(page->path());
    return page;
}

void EditorTabs::add(EditorPage* page)
{
    const int index = addTab(page, page->title());
    showTitle(page);
    connect(page, &EditorPage::titleChanged, this, [this, page] { showTitle(page); });
    watch(page->path());
    setCurrentIndex(index);
    page->editor().setFocus();
    Q_EMIT pagesChanged();
}

void EditorTabs::showTitle(EditorPage* page)
{
    const int index = indexOf(page);
    QString title = page->title();
    if (page->isModified())
        title += QStringLiteral(" *");
    if (page->isRunning())
        title.prepend(QStringLiteral("\u25b6 "));
    setTabText(index, title.replace(QLatin1Char('&'), QStringLiteral("&&")));
    setTabToolTip(index, page->path().isEmpty() ? tr("This script has no file yet.") : page->path());
}

void EditorTabs::askToOpen()
{
    auto* dialog = new QFileDialog(this, tr("Open Scripts"), folderForDialogs(), scriptFilter());
    dialog->setFileMode(QFileDialog::ExistingFiles);
    connect(dialog, &QFileDialog::filesSelected, this, [this](const QStringList& paths) {
        for (const QString& path : paths)
            open(path);
    });
    m_openDialog(dialog);
}

void EditorTabs::save(EditorPage* page, const Then& then)
{
    if (page->path().isEmpty()) {
        saveAs(page, then);
        return;
    }
    if (!page->hasChangedOutside()) {
        write(page, page->path(), then);
        return;
    }
    auto* box =
        new QMessageBox(QMessageBox::Warning, tr("Save"),
                        tr("Somebody else has changed %1 on the disk. Overwrite these changes?").arg(page->title()),
                        QMessageBox::Cancel, this);
    const QPushButton* overwrite = box->addButton(tr("&Overwrite"), QMessageBox::DestructiveRole);
    box->setDefaultButton(QMessageBox::Cancel);
    connect(overwrite, &QPushButton::clicked, page, [this, page, then] { write(page, page->path(), then); });
    m_openDialog(box);
}

void EditorTabs::saveAs(EditorPage* page, const Then& then)
{
    auto* dialog = new QFileDialog(this, tr("Save Script"), folderForDialogs(), scriptFilter());
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("py"));
    QString name = page->title();
    if (!name.endsWith(QStringLiteral(".py")))
        name = name.toLower().replace(QLatin1Char(' '), QLatin1Char('_')) + QStringLiteral(".py");
    dialog->selectFile(name);
    connect(dialog, &QFileDialog::fileSelected, page, [this, page, then](const QString& path) {
        const EditorPage* other = find(path);
        if (other && other != page && !other->path().isEmpty())
            warn(tr("%1 is open in another tab. Close that tab first, or choose another name.").arg(other->title()));
        else
            write(page, path, then);
    });
    m_openDialog(dialog);
}

void EditorTabs::write(EditorPage* page, const QString& path, const Then& then)
{
    if (const QString problem = page->save(path); !problem.isEmpty()) {
        warn(tr("Cannot save %1: %2.").arg(QDir::toNativeSeparators(path), problem));
        return;
    }
    watch(page->path());
    Q_EMIT fileUsed(page->path());
    Q_EMIT pagesChanged();
    call(then);
}

void EditorTabs::saveAll(const Then& then)
{
    for (EditorPage* page : pages()) {
        if (page->isModified()) {
            save(page, [this, then] { saveAll(then); });
            return;
        }
    }
    call(then);
}

void EditorTabs::closePage(EditorPage* page, const Then& then)
{
    const auto close = [this, page, then] {
        remove(page);
        call(then);
    };
    if (page->isModified())
        askToSave(page, close, close);
    else
        close();
}

void EditorTabs::remove(EditorPage* page)
{
    if (!page->path().isEmpty())
        m_watcher.removePath(page->path());
    removeTab(indexOf(page));
    page->deleteLater();
    Q_EMIT pagesChanged();
}

bool EditorTabs::mayClose(const Then& then, const QList<EditorPage*>& discarded)
{
    for (EditorPage* page : pages()) {
        if (!page->isModified() || discarded.contains(page))
            continue;
        const auto askForNext = [this, then](const QList<EditorPage*>& dropped) {
            if (mayClose(then, dropped))
                call(then);
        };
        askToSave(
            page, [askForNext, discarded] { askForNext(discarded); },
            [askForNext, discarded, page] { askForNext(discarded + QList<EditorPage*>{page}); });
        return false;
    }
    return true;
}

void EditorTabs::askToSave(EditorPage* page, const Then& saved, const Then& discarded)
{
    setCurrentWidget(page);
    auto* box =
        new QMessageBox(QMessageBox::Question, tr("Unsaved Changes"),
                        tr("%1 has unsaved changes. Save them?").arg(page->title()), QMessageBox::NoButton, this);
    const QPushButton* saveButton = box->addButton(QMessageBox::Save);
    const QPushButton* discard = box->addButton(QMessageBox::Discard);
    box->addButton(QMessageBox::Cancel);
    box->setDefaultButton(QMessageBox::Save);
    connect(saveButton, &QPushButton::clicked, page, [this, page, saved] { save(page, saved); });
    connect(discard, &QPushButton::clicked, page, discarded);
    m_openDialog(box);
}

void EditorTabs::lookForChanges()
{
    for (EditorPage* page : pages()) {
        page->lookForChange();
        watch(page->path());
    }
}

void EditorTabs::watch(const QString& path)
{
    // A file that was replaced is not watched any more.
    if (!path.isEmpty() && !m_watcher.files().contains(path) && QFileInfo::exists(path))
        m_watcher.addPath(path);
}

void EditorTabs::warn(const QString& text)
{
    m_openDialog(new QMessageBox(QMessageBox::Warning, tr("Scripts"), text, QMessageBox::Ok, this));
}

QString EditorTabs::folderForDialogs() const
{
    const EditorPage* page = current();
    return page && !page->path().isEmpty() ? QFileInfo(page->path()).absolutePath() : QString();
}
