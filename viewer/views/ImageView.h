#pragma once

#include "CxMdiView.h"
#include "VideoRecorder.h"

#include <QtWidgets/QMdiSubWindow>

#include <memory>

class ChainPanel;
class CxImageData;
class ImageWidget;
class ViewChain;
class ViewStore;

/// A view: a sub-window of the main window that shows an image. Deletes itself when it is closed.
class ImageView : public QMdiSubWindow, public CxMdiView
{
    Q_OBJECT
public:
    /// An empty view. The store, which outlives it, learns of every image.
    ImageView(int id, const QString& title, ViewStore& store);
    ~ImageView() override;

    /// The view's identifier, never used twice.
    int id() const { return m_id; }

    /// Gives the view its next image, or none for null. Every image, of a file, a script or a camera, comes this way:
    /// here it passes the processing chain, and what comes out is recorded and shown.
    void setImage(std::shared_ptr<CxImageData> image);

    /// What the view shows, processed, or null.
    const std::shared_ptr<CxImageData>& image() const { return m_image; }

    /// Tells whether images arrive by themselves, as from a running camera.
    void setLive(bool live);
    bool isLive() const { return m_live; }

    /// Images per second that recordings are played at.
    void setFrameRate(double framesPerSecond) { m_frameRate = framesPerSecond; }

    ViewChain& processingChain() const { return *m_chain; }
    ImageWidget* imageWidget() const { return m_widget; }
    const VideoRecorder& recorder() const { return m_recorder; }

    bool startVideoRecording(const QString& path) override;
    void stopVideoRecording() override;
    CxChainable* chainObject() override;

Q_SIGNALS:
    /// The view has got another image.
    void imageShown();

    /// Images stopped arriving by themselves.
    void liveEnded();

    /// The view is closed; its image is gone and the object goes soon.
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;
    void doClose() override;

private:
    void present();
    void processAnew();

    int m_id;
    ViewStore& m_store;
    std::unique_ptr<ViewChain> m_chain;
    ImageWidget* m_widget;
    ChainPanel* m_panel;
    std::shared_ptr<CxImageData> m_source; ///< as it came
    std::shared_ptr<CxImageData> m_image;  ///< as it is shown: the same one while the chain has nothing to do
    VideoRecorder m_recorder;
    double m_frameRate = 25;
    bool m_live = false;
};
