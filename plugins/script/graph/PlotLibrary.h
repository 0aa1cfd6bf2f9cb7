#pragma once

// The one header that includes the plotting library's own. That one is written with Qt's keywords, which this project
// switches off: `slots` and `signals` as macros collide with the interpreter's headers.

#include <QtCore/QObject>

#define signals Q_SIGNALS
#define slots Q_SLOTS
#define emit Q_EMIT
#define foreach Q_FOREACH
#include <qcustomplot.h>
#undef signals
#undef slots
#undef emit
#undef foreach
