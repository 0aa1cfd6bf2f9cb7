#pragma once

#include <QtCore/QMutex>

#include <map>
#include <memory>

class CxImageData;

/// What every view shows and which one is active, for scripts that ask on a thread that is not the GUI thread.
///
/// The GUI thread writes, any thread reads. An image handed out stays alive for as long as the reader holds it,
/// whatever happens to its view meanwhile; nobody changes an image that is in here.
class ViewStore
{
public:
    void setImage(int id, std::shared_ptr<CxImageData> image);
    void remove(int id);
    void setActiveId(int id);

    /// The image that a view shows, or null.
    std::shared_ptr<CxImageData> image(int id) const;

    /// Identifier of the active view, -1 when there is none.
    int activeId() const;

private:
    mutable QMutex m_lock;
    std::map<int, std::shared_ptr<CxImageData>> m_images;
    int m_activeId = -1;
};
