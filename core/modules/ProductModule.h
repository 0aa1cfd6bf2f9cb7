#pragma once

#include "HostGlobal.h"

#include <QtCore/QString>

/// A function of one of the product's own modules. A module is a shared library that is loaded on first use, because
/// the libraries that it needs take longer to load than everything else together. It stays loaded.
///
/// module is a file below the folder "vantrel" beside the core library. If the module or the function cannot be loaded,
/// returns null and sets problem to the reason.
VANTREL_HOST_EXPORT void* moduleFunction(const char* module, const char* function, QString& problem);
