// The menus and the status line of the main window.

#include "CxImageData.h"
#include "CxImageFormatManager.h"
#include "MainWindow.h"
#include "NotificationArea.h"
#include "RecordingStatus.h"
#include "views/DisplayImage.h"
#include "views/ImageFiles.h"
#include "views/ImageView.h"
#include "views/ImageWidget.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>
#include <QtGui/QActionGroup>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QStatusBar>

namespace {

constexpr double zoomStep = 1.25;

/// The property that marks the dialogs of this window.
const char* const ownDialog = "vantrelOwnDialog";

QString imageFilter()
{
    QStringList patterns;
    for (const QString& extension : CxImageFormatManager::instance()->extensions())
        patterns += QStringLiteral("*.") + extension;
    return MainWindow::tr("Images (%1);;All files (*)").arg(patterns.join(QLatin1Char(' ')));
}

} // namespace

void MainWindow::createFileMenu()
{
    QMenu* menu = m_menus[FileMenu] = menuBar()->addMenu(tr("&File"));
    menu->addAction(tr("&Open..."), QKeySequence::Open, this, &MainWindow::askForFilesToOpen);
    menu->addAction(tr("Save &As..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S), this,
                    &MainWindow::askForFileToSave);
    menu->addAction(tr("&Close"), QKeySequence::Close, this, [this] {
        if (ImageView* active = m_views.active())
            active->closeMdiView();
    });
    menu->addSeparator();
    menu->addAction(tr("&Quit"), QKeySequence::Quit, this, &MainWindow::close);
}

void MainWindow::createViewMenu()
{
    QMenu* menu = m_menus[ViewMenu] = menuBar()->addMenu(tr("&View"));
    const auto addZoom = [&](const QString& text, const QKeySequence& key, void (*zoom)(ImageWidget&)) {
        menu->addAction(text, key, this, [this, zoom] {
            if (ImageWidget* widget = activeImageWidget())
                zoom(*widget);
        });
    };
    addZoom(tr("Zoom to &Fit"), QKeySequence(Qt::CTRL | Qt::Key_0), [](ImageWidget& widget) { widget.zoomToFit(); });
    addZoom(tr("&100%"), QKeySequence(Qt::CTRL | Qt::Key_1), [](ImageWidget& widget) { widget.setScale(1); });
    addZoom(tr("Zoom &In"), QKeySequence::ZoomIn,
            [](ImageWidget& widget) { widget.setScale(widget.scale() * zoomStep); });
    addZoom(tr("Zoom &Out"), QKeySequence::ZoomOut,
            [](ImageWidget& widget) { widget.setScale(widget.scale() / zoomStep); });
    menu->addSeparator();
    menu->addAction(tr("&Duplicate"), QKeySequence(Qt::CTRL | Qt::Key_D), this, [this] { m_views.duplicate(-1); });
    menu->addAction(tr("&Tile"), QKeySequence(Qt::CTRL | Qt::Key_T), &m_views, &ViewList::tile);
    m_fullScreen =
        menu->addAction(tr("F&ull Screen"), QKeySequence(Qt::Key_F11), this, [this](bool on) { setFullScreen(on); });
    m_fullScreen->setCheckable(true);
}

void MainWindow::createScriptMenu()
{
    QMenu* menu = m_menus[ScriptMenu] = menuBar()->addMenu(tr("&Script"));
    menu->setToolTipsVisible(true);
    m_runScript =
        menu->addAction(tr("&Run Script..."), QKeySequence(Qt::CTRL | Qt::Key_R), this, &MainWindow::askForScript);
    m_stopScript =
        menu->addAction(tr("&Stop"), QKeySequence(Qt::CTRL | Qt::Key_Period), this, &MainWindow::scriptStopRequested);
    menu->addSeparator();
}

void MainWindow::createHelpMenu()
{
    QMenu* menu = m_menus[HelpMenu] = menuBar()->addMenu(tr("&Help"));
    menu->addAction(tr("&About Vantrel"), this, &MainWindow::showAbout);
}

// Made when it is needed first. A status line measures its font, for which the toolkit lists all fonts of the system: a
// run without a window need not wait for that.
void MainWindow::createStatusLine()
{
    if (m_pixel)
        return;
    statusBar()->addPermanentWidget(new RecordingStatus(m_views));
    for (QLabel** label : {&m_pixel, &m_zoom, &m_format}) {
        *label = new QLabel;
        statusBar()->addPermanentWidget(*label);
    }
    m_notifications->setBottomMargin(statusBar()->sizeHint().height());
    connect(m_notifications, &NotificationArea::notificationShown, this, [this](const QString& text) {
        constexpr qsizetype maxLength = 200; // characters: more than a line holds
        statusBar()->showMessage(text.left(maxLength).simplified());
    });
    updateStatusLine();
}

void MainWindow::setScriptRunning(bool running)
{
    m_scriptRuns = running;
    if (!running && m_closeQuestion)
        m_closeQuestion->reject();
    m_runScript->setEnabled(!running);
    m_stopScript->setEnabled(running);
}

bool MainWindow::isOwnDialog(const QDialog& dialog)
{
    return dialog.property(ownDialog).toBool();
}

void MainWindow::openDialog(QDialog* dialog)
{
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setProperty(ownDialog, true);
    dialog->open();
}

void MainWindow::warn(const QString& title, const QString& text)
{
    openDialog(new QMessageBox(QMessageBox::Warning, title, text, QMessageBox::Ok, this));
}

void MainWindow::askForFilesToOpen()
{
    auto* dialog = new QFileDialog(this, tr("Open Images"), {}, imageFilter());
    dialog->setFileMode(QFileDialog::ExistingFiles);
    connect(dialog, &QFileDialog::filesSelected, this, [this](const QStringList& paths) {
        const QStringList failures = m_views.openFiles(paths);
        if (!failures.isEmpty())
            warn(tr("Open Images"), failures.join(QLatin1Char('\n')));
    });
    openDialog(dialog);
}

void MainWindow::askForFileToSave()
{
    const ImageView* active = m_views.active();
    if (!active || !active->image())
        return;
    auto* dialog = new QFileDialog(this, tr("Save Image"), {}, imageFilter());
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->selectFile(active->windowTitle());
    // The image is held: while the dialog is open, the view may change or close.
    connect(dialog, &QFileDialog::fileSelected, this, [this, image = active->image()](const QString& path) {
        QString problem;
        if (!saveImageFile(*image, path, problem))
            warn(tr("Save Image"), tr("Cannot save %1: %2.").arg(path, problem));
    });
    openDialog(dialog);
}

void MainWindow::askForScript()
{
    auto* dialog = new QFileDialog(this, tr("Run Script"), {}, tr("Scripts (*.py);;All files (*)"));
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, &MainWindow::scriptChosen);
    openDialog(dialog);
}

void MainWindow::showAbout()
{
    const QString text =
        tr("Vantrel %1\nA camera viewer that scripts can drive.\n\nScripts: %2\nQt %3")
            .arg(QCoreApplication::applicationVersion(), m_scriptLanguage.isEmpty() ? tr("none") : m_scriptLanguage,
                 QString::fromLatin1(qVersion()));
    auto* box = new QMessageBox(QMessageBox::NoIcon, tr("About Vantrel"), text, QMessageBox::Ok, this);
    box->setIconPixmap(windowIcon().pixmap(64, 64));
    openDialog(box);
}

void MainWindow::showPixel(const ImageView& view, const QPoint& pixel)
{
    if (!m_pixel)
        return;
    const SxPicBuf* buffer = view.image() ? view.image()->picBuf() : nullptr;
    const QString values = buffer ? pixelText(*buffer, pixel.x(), pixel.y()) : QString();
    m_pixel->setText(values.isEmpty() ? QString()
                                      : QStringLiteral("(%1, %2)  %3").arg(pixel.x()).arg(pixel.y()).arg(values));
}

void MainWindow::updateStatusLine()
{
    if (!m_pixel)
        return;
    const ImageView* active = m_views.active();
    const SxPicBuf* buffer = active && active->image() ? active->image()->picBuf() : nullptr;
    m_format->setText(buffer ? formatText(*buffer) : QString());
    m_zoom->setText(buffer ? QStringLiteral("%1%").arg(qRound(active->imageWidget()->scale() * 100)) : QString());
    if (!active)
        m_pixel->clear();
}
