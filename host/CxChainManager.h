#pragma once

#include "HostGlobal.h"

#include <QtCore/QtGlobal>

class CxChain;
class CxChainable;

/// Puts objects into processing chains. Used on the GUI thread only.
class VANTREL_HOST_EXPORT CxChainManager
{
public:
    static CxChainManager* instance();

    /// Inserts an object into a chain, just before another object of the same chain; before null means at the end. True
    /// on success. With null, with an object that is in a chain already, and with a viewObject of another chain nothing
    /// changes but for a log line (false).
    ///
    /// An object belongs to the chain that its chain() names, and to the caller while that is null. So after true the
    /// chain owns newObject; after false, and after a throw, chain() tells. Deleting an object takes it out of its
    /// chain.
    bool insertBefore(CxChain* chain, CxChainable* newObject, CxChainable* viewObject);

private:
    CxChainManager() = default;
    Q_DISABLE_COPY_MOVE(CxChainManager)
};
