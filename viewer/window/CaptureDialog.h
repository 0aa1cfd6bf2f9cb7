#pragma once

#include <QtCore/QTimer>
#include <QtWidgets/QDialog>

#include <memory>

class CxImageData;
class ImageWidget;
class ViewerCamera;
class QComboBox;
class QLabel;
class QPushButton;

/// Lets the user capture one frame of a camera, with a live preview.
class CaptureDialog : public QDialog
{
    Q_OBJECT
public:
    /// How long after the click the image is captured; scripts pass these numbers as the option.
    enum Delay { AtOnce = 0, AfterThreeSeconds = 1, AfterTenSeconds = 2 };

    /// Starts the camera if it is not running; the destructor then stops it again. delay is the preselected entry: a
    /// negative one hides the choice, one beyond the last entry selects that.
    CaptureDialog(ViewerCamera& camera, const QString& title, const QString& message, int delay, QWidget* parent);
    ~CaptureDialog() override;

    /// The captured frame, or null if the dialog was not accepted.
    std::shared_ptr<CxImageData> captured() const { return m_captured; }

    /// The chosen delay, or -1 if there was no choice.
    int delay() const;

private:
    void showFrame(std::shared_ptr<CxImageData> frame);
    void beginCapture();
    void countDown();
    void capture();

    ViewerCamera* m_camera;
    bool m_startedCamera = false;
    ImageWidget* m_preview;
    QComboBox* m_delays = nullptr;
    QPushButton* m_captureButton;
    QLabel* m_state;
    QTimer m_countdown;
    int m_secondsLeft = 0;
    bool m_waitsForFrame = false;
    std::shared_ptr<CxImageData> m_frame; ///< the latest frame
    std::shared_ptr<CxImageData> m_captured;
};
