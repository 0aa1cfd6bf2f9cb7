#include "ViewList.h"

#include "CxImageData.h"
#include "TakeAs.h"
#include "views/ImageFiles.h"
#include "views/ImageView.h"
#include "views/ImageWidget.h"

#include <QtCore/QDebug>
#include <QtCore/QFileInfo>
#include <QtWidgets/QMdiArea>

#include <algorithm>

ViewList::ViewList()
    : m_area(new QMdiArea)
{
    m_area->setActivationOrder(QMdiArea::ActivationHistoryOrder);
    connect(m_area, &QMdiArea::subWindowActivated, this, &ViewList::noteActivation);
}

ViewList::~ViewList()
{
    // Without the connections no view reports to a half-destroyed list.
    m_area->disconnect(this);
    for (const auto& [id, view] : std::map(m_views)) {
        view->disconnect(this);
        delete view;
    }
}

ImageView* ViewList::add(std::shared_ptr<CxImageData> image, const QString& title, bool activate)
{
    const int id = ++m_lastId;
    auto added = std::make_unique<ImageView>(id, title, m_store);
    ImageView* view = added.get();
    try {
        view->setImage(std::move(image));
        m_views[id] = view;
        m_activations.insert(m_activations.begin(), id);
        connect(view, &ImageView::closed, this, [this, id] { noteClosing(id); });
        connect(view, &ImageView::imageShown, this, &ViewList::activeViewChanged);
        connect(view, &ImageView::recordingChanged, this, &ViewList::recordingsChanged);
        connect(view->imageWidget(), &ImageWidget::scaleChanged, this, &ViewList::activeViewChanged);
        connect(view->imageWidget(), &ImageWidget::pixelHovered, this,
                [this, view](const QPoint& pixel) { Q_EMIT pixelHovered(*view, pixel); });
        const int before = m_store.activeId();
        m_area->addSubWindow(view);
        view->show();
        this->activate(activate || before < 0 ? id : before);
    } catch (...) {
        view->disconnect(this);
        noteClosing(id);
        throw;
    }
    return added.release(); // the area deletes it
}

bool ViewList::openFile(const QString& path, bool activate, QString* problem)
{
    QString reason;
    std::shared_ptr<CxImageData> image = loadImageFile(path, reason);
    if (problem)
        *problem = reason;
    if (!image)
        return false;
    add(std::move(image), QFileInfo(path).fileName(), activate);
    return true;
}

QStringList ViewList::openFiles(const QStringList& paths)
{
    QStringList failures;
    for (const QString& path : paths) {
        QString problem;
        if (!openFile(path, true, &problem))
            failures += tr("Cannot open %1: %2.").arg(path, problem);
    }
    return failures;
}

bool ViewList::duplicate(int id)
{
    const ImageView* original = id < 0 ? active() : view(id);
    if (!original)
        return false;
    std::shared_ptr<CxImageData> copy;
    if (const auto& image = original->image()) {
        copy = takeAs<CxImageData>(image->clone(nullptr, nullptr));
        if (!copy) {
            qCritical() << "Cannot duplicate the view: out of memory";
            return false;
        }
    }
    add(std::move(copy), tr("Copy of %1").arg(original->windowTitle()));
    return true;
}

ImageView* ViewList::view(int id) const
{
    const auto found = m_views.find(id);
    return found == m_views.end() ? nullptr : found->second;
}

ImageView* ViewList::active() const
{
    return view(m_store.activeId());
}

std::vector<int> ViewList::ids() const
{
    std::vector<int> ids;
    for (const auto& [id, view] : m_views)
        ids.push_back(id);
    return ids;
}

void ViewList::activate(int id)
{
    if (ImageView* wanted = view(id)) {
        // Scripts need an active view even where nothing is shown. The area is told only if it is visible: it
        // deactivates every other view first, which takes the longer the more there are.
        noteActivation(wanted);
        if (m_area->isVisible())
            m_area->setActiveSubWindow(wanted);
    }
}

void ViewList::show(const std::function<void()>& showArea)
{
    const bool appears = !m_area->isVisible();
    // The area activates views in an order of its own when it appears. It has to know ours: when a view is closed, it
    // activates the one before.
    const QSignalBlocker blocker(m_area);
    showArea();
    for (const int id : appears ? std::vector(m_activations) : std::vector<int>())
        m_area->setActiveSubWindow(view(id));
}

void ViewList::tile()
{
    m_area->tileSubWindows();
}

void ViewList::noteActivation(QMdiSubWindow* window)
{
    // The area reports null when it loses the keyboard focus; the active view stays active.
    const auto* active = qobject_cast<ImageView*>(window);
    if (!active || !view(active->id()))
        return;
    std::erase(m_activations, active->id());
    m_activations.push_back(active->id());
    m_store.setActiveId(active->id());
    Q_EMIT activeViewChanged();
}

void ViewList::noteClosing(int id)
{
    m_views.erase(id);
    std::erase(m_activations, id);
    m_store.setActiveId(m_activations.empty() ? -1 : m_activations.back());
    if (!m_activations.empty())
        activate(m_activations.back());
    Q_EMIT activeViewChanged();
}
