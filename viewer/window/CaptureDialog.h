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
    /// What scripts choose with the option: how long after the button the image is captured.
    enum Delay { AtOnce = 0, AfterThreeSeconds = 1, AfterTenSeconds = 2 };

    /// The camera runs while the dialog is shown; one that did not run before is stopped again afterwards. delay is the
    /// preselected entry; the choice is only offered where there is one (not negative).
    CaptureDialog(ViewerCamera& camera, const QString& title, const QString& message, int delay, QWidget* parent);
    ~CaptureDialog() override;

    /// The captured frame; null unless the dialog was accepted.
    std::shared_ptr<CxImageData> captured() const { return m_captured; }

    /// The chosen delay, -1 where none was offered.
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
    std::shared_ptr<CxImageData> m_frame; ///< the latest one
    std::shared_ptr<CxImageData> m_captured;
};
