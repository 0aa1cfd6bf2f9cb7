#include "MainWindow.h"

#include "CxImageData.h"
#include "ImageFiles.h"
#include "ImageView.h"
#include "ImageWidget.h"
#include "NotificationArea.h"

#include <QtCore/QDebug>
#include <QtCore/QFileInfo>
#include <QtGui/QCloseEvent>
#include <QtGui/QIcon>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMenu>
#include <QtWidgets/QStatusBar>

#include <algorithm>

MainWindow::MainWindow()
    : m_area(new QMdiArea)
{
    setWindowTitle(QStringLiteral("Vantrel"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icon/vantrel.png"))); // of the views as well
    resize(1100, 750);
    m_area->setActivationOrder(QMdiArea::ActivationHistoryOrder);
    setCentralWidget(m_area);
    connect(m_area, &QMdiArea::subWindowActivated, this, &MainWindow::noteActivation);
    createFileMenu();
    createViewMenu();
    createScriptMenu();
    createHelpMenu();
    createStatusLine();
    setScriptRunning(false);
}

MainWindow::~MainWindow()
{
    // The views are children and go after this object's own members: they must not report to it any more.
    m_area->disconnect(this);
    for (const auto& [id, view] : std::map(m_views)) {
        view->disconnect(this);
        delete view;
    }
}

ImageView* MainWindow::addView(std::shared_ptr<CxImageData> image, const QString& title, bool activate)
{
    const int id = ++m_lastId;
    auto added = std::make_unique<ImageView>(id, title, m_store);
    ImageView* view = added.get();
    try {
        view->setImage(std::move(image));
        m_views[id] = view;
        m_activations.insert(m_activations.begin(), id);
        connect(view, &ImageView::closed, this, [this, id] { noteClosing(id); });
        connect(view, &ImageView::imageShown, this, &MainWindow::updateStatusLine);
        connect(view->imageWidget(), &ImageWidget::scaleChanged, this, &MainWindow::updateStatusLine);
        connect(view->imageWidget(), &ImageWidget::pixelHovered, this,
                [this, view](const QPoint& pixel) { showPixel(*view, pixel); });
        const int before = m_store.activeId();
        m_area->addSubWindow(view);
        view->show();
        activateView(activate || before < 0 ? id : before);
    } catch (...) {
        view->disconnect(this);
        noteClosing(id);
        throw;
    }
    return added.release(); // the area deletes it
}

bool MainWindow::openFile(const QString& path, bool activate)
{
    std::shared_ptr<CxImageData> image = loadImageFile(path);
    if (!image)
        return false;
    addView(std::move(image), QFileInfo(path).fileName(), activate);
    return true;
}

bool MainWindow::duplicateView(int id)
{
    const ImageView* original = id < 0 ? activeView() : view(id);
    if (!original)
        return false;
    std::shared_ptr<CxImageData> copy;
    if (const auto& image = original->image()) {
        copy.reset(qobject_cast<CxImageData*>(image->clone(nullptr, nullptr)));
        if (!copy) {
            qCritical() << "The view cannot be duplicated: out of memory";
            return false;
        }
    }
    addView(std::move(copy), tr("Copy of %1").arg(original->windowTitle()));
    return true;
}

ImageView* MainWindow::view(int id) const
{
    const auto found = m_views.find(id);
    return found == m_views.end() ? nullptr : found->second;
}

ImageView* MainWindow::activeView() const
{
    return view(m_store.activeId());
}

std::vector<int> MainWindow::viewIds() const
{
    std::vector<int> ids;
    for (const auto& [id, view] : m_views)
        ids.push_back(id);
    return ids;
}

void MainWindow::activateView(int id)
{
    if (ImageView* wanted = view(id)) {
        // The area activates nothing while it is hidden, and a script needs an active view all the same.
        noteActivation(wanted);
        m_area->setActiveSubWindow(wanted);
    }
}

void MainWindow::tileViews()
{
    m_area->tileSubWindows();
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

void MainWindow::noteActivation(QMdiSubWindow* window)
{
    // The area reports null whenever the keyboard goes elsewhere; the view that was active stays so.
    const auto* active = qobject_cast<ImageView*>(window);
    if (!active || !view(active->id()))
        return;
    std::erase(m_activations, active->id());
    m_activations.push_back(active->id());
    m_store.setActiveId(active->id());
    updateStatusLine();
}

void MainWindow::noteClosing(int id)
{
    m_views.erase(id);
    std::erase(m_activations, id);
    m_store.setActiveId(m_activations.empty() ? -1 : m_activations.back());
    if (!m_activations.empty())
        activateView(m_activations.back());
    updateStatusLine();
}

ImageWidget* MainWindow::activeImageWidget() const
{
    const ImageView* active = activeView();
    return active ? active->imageWidget() : nullptr;
}
