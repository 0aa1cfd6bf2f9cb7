#pragma once

#include <QtCore/qglobal.h>

// Marks the classes and functions that the host core library exports.
#if defined(VANTREL_CORE_BUILD)
#define VANTREL_HOST_EXPORT Q_DECL_EXPORT
#else
#define VANTREL_HOST_EXPORT Q_DECL_IMPORT
#endif
