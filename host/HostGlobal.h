#pragma once

#include <QtCore/qglobal.h>

// Marks what the host core library defines and everybody else links against.
#if defined(VANTREL_CORE_BUILD)
#define VANTREL_HOST_EXPORT Q_DECL_EXPORT
#else
#define VANTREL_HOST_EXPORT Q_DECL_IMPORT
#endif
