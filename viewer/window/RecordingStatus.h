#pragma once

#include <QtCore/QTimer>
#include <QtWidgets/QToolButton>

class QMenu;
class ViewList;

/// Shows in the status line that views are being recorded. A click opens a menu, which ends recordings. Hidden while no
/// view is recorded.
class RecordingStatus : public QToolButton
{
    Q_OBJECT
public:
    /// The views must exist as long as this button is used.
    explicit RecordingStatus(const ViewList& views);

private:
    void refresh();
    void openMenu();

    const ViewList& m_views;
    QMenu* m_menu;
    QTimer m_timer;
};
