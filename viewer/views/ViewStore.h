#pragma once

#include <QtCore/QMutex>

#include <map>
#include <memory>

class CxImageData;

/// The images of the views and the active view, for scripts that ask on a thread other than the GUI thread.
///
/// The GUI thread writes, any thread reads. A returned image stays alive as long as the reader holds it, whatever
/// happens to its view. Images in the store never change.
class ViewStore
{
public:
    void setImage(int id, std::shared_ptr<CxImageData> image);
    void remove(int id);
    void setActiveId(int id);

    /// The image that a view shows, or null.
    std::shared_ptr<CxImageData> image(int id) const;

    /// Identifier of the active view, or -1 if there is none.
    int activeId() const;

private:
    mutable QMutex m_lock;
    std::map<int, std::shared_ptr<CxImageData>> m_images;
    int m_activeId = -1;
};
