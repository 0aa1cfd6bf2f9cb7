#pragma once

#include "views/ViewStore.h"

#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <functional>
#include <map>
#include <memory>
#include <vector>

class CxImageData;
class ImageView;
class QMdiArea;
class QMdiSubWindow;
class QPoint;

/// The open views: their identifiers, their order of activation, and the area that shows them. GUI thread only, apart
/// from store().
///
/// Identifiers are never used twice.
class ViewList : public QObject
{
    Q_OBJECT
public:
    ViewList();
    ~ViewList() override;

    /// The widget that shows the views. The window that puts it into its layout owns it and must outlive this object.
    QMdiArea* area() const { return m_area; }

    /// Opens a view for the image; null opens an empty view. The view becomes the active one if activate is true or no
    /// view is active. If this throws, no view is left, and the list no longer holds the image.
    ImageView* add(std::shared_ptr<CxImageData> image, const QString& title, bool activate = true);

    /// Opens an image file in a new view; activate works as in add(). If the file cannot be shown, returns false, logs
    /// why and gives the reason in problem, unless that is null.
    bool openFile(const QString& path, bool activate = true, QString* problem = nullptr);

    /// Opens the image files that the user has named. Returns a sentence with the reason for each that cannot be shown.
    QStringList openFiles(const QStringList& paths);

    /// Copies the image of a view into a new view, which becomes the active one. A negative id stands for the active
    /// view. Returns false if there is no such view or, with a log line, if there is not enough memory for the copy.
    bool duplicate(int id);

    /// The view with that identifier, or null.
    ImageView* view(int id) const;

    /// The active view, or null.
    ImageView* active() const;

    /// Identifiers of all views, oldest first.
    std::vector<int> ids() const;

    /// Makes a view the active one. An unknown identifier changes nothing.
    void activate(int id);

    /// Shows the area by a function of the caller. The views keep their order of activation.
    void show(const std::function<void()>& showArea);

    void tile();

    /// The state of the views that any thread may read.
    const ViewStore& store() const { return m_store; }

Q_SIGNALS:
    /// Another view is active, or the active view shows something else: another image, another zoom.
    void activeViewChanged();

    /// The mouse moved over a pixel of a view.
    void pixelHovered(const ImageView& view, const QPoint& pixel);

    /// The recording of a view has begun or ended.
    void recordingsChanged();

private:
    void noteActivation(QMdiSubWindow* window);
    void noteClosing(int id);

    ViewStore m_store;
    QMdiArea* m_area;
    std::map<int, ImageView*> m_views;
    std::vector<int> m_activations; ///< identifiers of the open views, the active one last
    int m_lastId = 0;
};
