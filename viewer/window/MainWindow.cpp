#include "MainWindow.h"

#include "NotificationArea.h"
#include "views/ImageView.h"

#include <QtGui/QCloseEvent>
#include <QtGui/QIcon>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMenu>

MainWindow::MainWindow()
{
    setWindowTitle(QStringLiteral("Vantrel"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icon/vantrel.png"))); // for the views as well
    resize(1100, 750);
    setCentralWidget(m_views.area());
    connect(&m_views, &ViewList::activeViewChanged, this, &MainWindow::updateStatusLine);
    connect(&m_views, &ViewList::pixelHovered, this, &MainWindow::showPixel);
    createFileMenu();
    createViewMenu();
    createScriptMenu();
    createHelpMenu();
    createStatusLine();
    setScriptRunning(false);
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
    m_notifications->add(text);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    QMainWindow::closeEvent(event);
    if (event->isAccepted())
        Q_EMIT closed();
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
