#include "MainWindow.h"

#include "NotificationArea.h"
#include "ScriptBar.h"
#include "process/CloseRequest.h"
#include "views/ImageView.h"

#include <QtGui/QCloseEvent>
#include <QtGui/QIcon>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

MainWindow::MainWindow()
{
    setWindowTitle(QStringLiteral("Vantrel"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icon/vantrel.png"))); // for the views as well
    resize(1100, 750);
    connect(&m_views, &ViewList::activeViewChanged, this, &MainWindow::updateStatusLine);
    connect(&m_views, &ViewList::pixelHovered, this, &MainWindow::showPixel);
    createFileMenu();
    createViewMenu();
    createScriptMenu();
    createHelpMenu();
    m_notifications = new NotificationArea(this);
    m_scriptBar = new ScriptBar(m_stopScript, this);
    addToolBar(m_scriptBar);
    auto* center = new QWidget;
    auto* layout = new QVBoxLayout(center);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_scriptBar->warning());
    layout->addWidget(m_views.area(), 1);
    setCentralWidget(center);
    setScriptRunning(false);
    QApplication::instance()->installEventFilter(this);
}

void MainWindow::setFullScreen(bool on)
{
    setWindowState(windowState().setFlag(Qt::WindowFullScreen, on));
    m_fullScreen->setChecked(on);
}

QMenu* MainWindow::menu(int kind) const
{
    const auto found = m_menus.find(kind);
    return found == m_menus.end() ? nullptr : found->second;
}

void MainWindow::showNotification(const QString& text)
{
    createStatusLine();
    m_notifications->add(text);
}

void MainWindow::setVisible(bool visible)
{
    if (!visible)
        return QMainWindow::setVisible(false);
    createStatusLine();
    m_views.show([this] { QMainWindow::setVisible(true); });
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (m_scriptRuns && isVisible()) {
        event->ignore();
        askToStopAndClose();
        return;
    }
    if (m_mayClose && isVisible() && !m_mayClose()) {
        event->ignore();
        return;
    }
    QMainWindow::closeEvent(event);
    if (event->isAccepted())
        Q_EMIT closed();
}

void MainWindow::askToStopAndClose()
{
    // An answered question is deleted later.
    if (m_closeQuestion && m_closeQuestion->isVisible()) {
        m_closeQuestion->raise();
        return;
    }
    m_closeQuestion = new QMessageBox(QMessageBox::Question, tr("Close"), tr("A script is running: stop it and close?"),
                                      QMessageBox::Cancel, this);
    const QPushButton* stop = m_closeQuestion->addButton(tr("&Stop and Close"), QMessageBox::AcceptRole);
    m_closeQuestion->setDefaultButton(QMessageBox::Cancel);
    connect(stop, &QPushButton::clicked, this, [this] {
        m_scriptRuns = false; // the question is answered
        close();
    });
    openDialog(m_closeQuestion);
}

bool MainWindow::eventFilter(QObject* object, QEvent* event)
{
    // A dialog blocks the shortcuts of this window, but not this one.
    if (event->type() == QEvent::KeyPress && m_stopScript && m_stopScript->isEnabled()) {
        const auto* key = static_cast<QKeyEvent*>(event); // NOLINT(cppcoreguidelines-pro-type-static-cast-downcast)
        if (key->key() == Qt::Key_Period && key->modifiers() == Qt::ControlModifier) {
            m_stopScript->trigger();
            return true;
        }
    }
    return QMainWindow::eventFilter(object, event);
}

bool MainWindow::nativeEvent(const QByteArray& eventType, void* message, qintptr* result)
{
    // Qt drops the request while a dialog blocks this window, but the question about the script must appear.
    if (m_scriptRuns && QApplication::activeModalWidget() && isCloseRequest(eventType, message)) {
        QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection);
        return true;
    }
    return QMainWindow::nativeEvent(eventType, message, result);
}

void MainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && m_fullScreen)
        m_fullScreen->setChecked(isFullScreen());
}

ImageWidget* MainWindow::activeImageWidget() const
{
    const ImageView* active = m_views.active();
    return active ? active->imageWidget() : nullptr;
}
