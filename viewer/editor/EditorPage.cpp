#include "EditorPage.h"

#include "ScriptEditor.h"
#include "SourceText.h"
#include "storage/FileReplacement.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtWidgets/QFrame>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include <memory>

EditorPage::EditorPage(const QString& title, const QString& text, const QString& origin)
    : m_title(title)
    , m_origin(origin)
    , m_editor(new ScriptEditor)
    , m_bar(new QFrame)
    , m_barText(new QLabel)
    , m_reload(new QPushButton(tr("&Reload")))
{
    m_bar->setObjectName(QStringLiteral("changedOutside"));
    m_bar->setFrameShape(QFrame::StyledPanel);
    m_bar->setAutoFillBackground(true);
    m_bar->setBackgroundRole(QPalette::ToolTipBase);
    m_barText->setForegroundRole(QPalette::ToolTipText);
    m_barText->setWordWrap(true);
    auto* keepButton = new QPushButton(tr("&Keep This Text"));
    auto* row = new QHBoxLayout(m_bar);
    row->setContentsMargins(6, 3, 6, 3);
    row->addWidget(m_barText, 1);
    row->addWidget(m_reload);
    row->addWidget(keepButton);
    m_bar->hide();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_bar);
    layout->addWidget(m_editor, 1);
    setFocusProxy(m_editor);
    m_editor->begin(text);
    connect(m_editor, &QsciScintilla::modificationChanged, this, &EditorPage::titleChanged);
    connect(m_reload, &QPushButton::clicked, this, &EditorPage::reload);
    connect(keepButton, &QPushButton::clicked, this, &EditorPage::keep);
}

EditorPage* EditorPage::opened(const QString& path, QString& problem)
{
    auto page = std::make_unique<EditorPage>(QString(), QString());
    problem = page->read(path);
    return problem.isEmpty() ? page.release() : nullptr;
}

QString EditorPage::title() const
{
    return m_path.isEmpty() ? m_title : QFileInfo(m_path).fileName();
}

bool EditorPage::isModified() const
{
    return m_editor->isModified();
}

bool EditorPage::isFresh() const
{
    return m_path.isEmpty() && !isModified();
}

QString EditorPage::save(const QString& path)
{
    QString problem;
    const auto bytes = SourceText{m_editor->text(), m_hasMark}.encoded(problem);
    if (!bytes)
        return problem;
    if (const FileProblem failure = replaceFile(path, *bytes))
        return failure.text();
    m_path = QFileInfo(path).canonicalFilePath();
    m_known = bytes;
    m_isKept = false;
    m_bar->hide();
    m_editor->setModified(false);
    Q_EMIT titleChanged();
    return {};
}

bool EditorPage::hasChangedOutside() const
{
    return !m_path.isEmpty() && !m_isKept && bytesOf(m_path) != m_known;
}

void EditorPage::lookForChange()
{
    if (m_path.isEmpty())
        return;
    const auto bytes = bytesOf(m_path);
    if (bytes == m_known) {
        if (!m_isKept)
            m_bar->hide();
        return;
    }
    if (m_isKept) { // it has changed once more
        m_isKept = false;
        m_known.reset();
    }
    if (bytes)
        showBar(isModified() ? tr("%1 has changed on the disk. Your own changes are not saved.").arg(title())
                             : tr("%1 has changed on the disk.").arg(title()),
                true);
    else
        showBar(tr("%1 is no longer on the disk. Saving writes it again.").arg(title()), false);
}

void EditorPage::setRunning(bool running)
{
    m_isRunning = running;
    Q_EMIT titleChanged();
}

std::optional<QByteArray> EditorPage::bytesOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray bytes = file.readAll();
    return file.error() == QFileDevice::NoError ? std::optional<QByteArray>(std::move(bytes)) : std::nullopt;
}

QString EditorPage::read(const QString& path)
{
    QFile file(path);
    QByteArray bytes;
    if (file.open(QIODevice::ReadOnly))
        bytes = file.readAll(); // can fail even after opening, for example for a folder
    if (file.error() != QFileDevice::NoError)
        return file.errorString();
    QString problem;
    const auto source = SourceText::decoded(bytes, problem);
    if (!source)
        return problem;
    const bool isReloaded = !m_path.isEmpty();
    m_path = QFileInfo(path).canonicalFilePath();
    m_hasMark = source->hasMark;
    m_known = bytes;
    m_isKept = false;
    if (isReloaded)
        m_editor->replaceAll(source->text);
    else
        m_editor->begin(source->text);
    m_editor->setModified(false);
    Q_EMIT titleChanged();
    return {};
}

void EditorPage::reload()
{
    const QString problem = read(m_path);
    if (problem.isEmpty())
        m_bar->hide();
    else
        showBar(tr("Cannot read %1: %2.").arg(title(), problem), true);
}

void EditorPage::keep()
{
    m_known = bytesOf(m_path);
    m_isKept = true;
    m_bar->hide();
    m_editor->setFocus();
}

void EditorPage::showBar(const QString& text, bool canReload)
{
    m_barText->setText(text);
    m_reload->setVisible(canReload);
    m_bar->show();
}
