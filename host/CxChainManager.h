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

    /// Inserts newObject into a chain, just before viewObject, or at the end if viewObject is null. Returns true on
    /// success. Returns false, logs a line and changes nothing if chain or newObject is null, if newObject is already
    /// in a chain, or if viewObject is not in this chain.
    ///
    /// After true the chain owns newObject. After false or an exception, look at newObject->chain(): that chain owns
    /// the object, or the caller does if it is null. Deleting an object removes it from its chain.
    bool insertBefore(CxChain* chain, CxChainable* newObject, CxChainable* viewObject);

private:
    CxChainManager() = default;
    Q_DISABLE_COPY_MOVE(CxChainManager)
};
