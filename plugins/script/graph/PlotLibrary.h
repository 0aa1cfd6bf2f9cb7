#pragma once

// The only header that includes the plotting library's header. The library's header uses Qt's keywords, which this
// project switches off: the macros `slots` and `signals` collide with the interpreter's headers.

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
