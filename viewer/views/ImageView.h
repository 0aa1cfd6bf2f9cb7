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
    /// Makes an empty view. It puts each image that it shows into the store, which must outlive it.
    ImageView(int id, const QString& title, ViewStore& store);
    ~ImageView() override;

    /// The view's identifier, which is never reused.
    int id() const { return m_id; }

    /// Gives the view its next image; null gives none. Images from files, scripts and cameras all come this way: the
    /// view sends the image through the processing chain, then shows and records the result.
    void setImage(std::shared_ptr<CxImageData> image);

    /// What the view shows, processed, or null.
    const std::shared_ptr<CxImageData>& image() const { return m_image; }

    /// Tells the view whether images arrive by themselves, for example from a running camera.
    void setLive(bool live);
    bool isLive() const { return m_live; }

    /// Sets the speed at which later recordings are played, in images per second.
    void setFrameRate(double framesPerSecond) { m_frameRate = framesPerSecond; }

    ViewChain& processingChain() const { return *m_chain; }
    ImageWidget* imageWidget() const { return m_widget; }
    const VideoRecorder& recorder() const { return m_recorder; }

    /// Tells the view how many of its next images are lost: a recording counts them.
    void noteLostFrames(int count) { m_recorder.noteDropped(count); }

    bool startVideoRecording(const QString& path) override;
    void stopVideoRecording() override;
    CxChainable* chainObject() override;

Q_SIGNALS:
    /// The view shows its next image. Not emitted when only the processing has changed.
    void imageShown();

    /// Images no longer arrive by themselves.
    void liveEnded();

    /// A recording of the view has begun or ended.
    void recordingChanged();

    /// The view has been closed. Its image is gone; the object is deleted soon.
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;
    void doClose() override;

private:
    void present();
    void reprocess();

    int m_id;
    ViewStore& m_store;
    std::unique_ptr<ViewChain> m_chain;
    ImageWidget* m_widget;
    ChainPanel* m_panel;
    std::shared_ptr<CxImageData> m_source; ///< as given to the view
    std::shared_ptr<CxImageData> m_image;  ///< as shown; the same object while the chain has nothing to do
    VideoRecorder m_recorder;
    double m_frameRate = 25;
    bool m_live = false;
};
