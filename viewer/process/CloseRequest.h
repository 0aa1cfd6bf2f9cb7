#pragma once

#include <QtCore/QByteArray>

/// True if an event of the window system is the user's request to close a window. Takes what QWidget::nativeEvent()
/// gets. Knows the requests of X11; of other window systems it knows none.
bool isCloseRequest(const QByteArray& eventType, const void* event);
