// Processing chains: their objects, the order of the objects, and ownership.

#include "CxChain.h"
#include "CxChainManager.h"
#include "CxChainable.h"

#include <QtCore/QLoggingCategory>

#include <utility>

// ---- an object of a chain ----

CxChainable::CxChainable() = default;

CxChainable::~CxChainable()
{
    if (m_chain)
        m_chain->forget(*this);
}

CxChain* CxChainable::chain() const
{
    return m_chain;
}

void CxChainable::setEnabled(bool enabled)
{
    if (std::exchange(m_enabled, enabled) != enabled)
        Q_EMIT changed();
}

bool CxChainable::isEnabled() const
{
    return m_enabled;
}

// ---- the chain ----

CxChain::CxChain(QObject* parent)
    : QObject(parent)
{
}

CxChain::~CxChain()
{
    // Detach each object before deleting it, so that it does not use the chain that is being destroyed.
    for (CxChainable* object : std::exchange(m_objects, {})) {
        object->m_chain = nullptr;
        delete object;
    }
}

bool CxChain::stopped() const
{
    return m_stopped;
}

void CxChain::stop()
{
    if (!std::exchange(m_stopped, true))
        Q_EMIT changed();
}

void CxChain::start()
{
    if (std::exchange(m_stopped, false))
        Q_EMIT changed();
}

QList<CxChainable*> CxChain::objects() const
{
    return m_objects;
}

void CxChain::process(CxImageData& image)
{
    if (m_stopped)
        return;
    for (CxChainable* object : std::as_const(m_objects)) {
        if (object->isEnabled())
            object->process(image);
    }
}

void CxChain::insert(qsizetype position, CxChainable& object)
{
    m_objects.insert(position, &object);
    object.m_chain = this;
    connect(&object, &CxChainable::changed, this, &CxChain::changed);
    Q_EMIT changed();
}

void CxChain::forget(CxChainable& object)
{
    m_objects.removeAll(&object);
    object.m_chain = nullptr;
    Q_EMIT changed();
}

// ---- the manager ----

CxChainManager* CxChainManager::instance()
{
    static CxChainManager manager;
    return &manager;
}

bool CxChainManager::insertBefore(CxChain* chain, CxChainable* newObject, CxChainable* viewObject)
{
    if (!chain || !newObject) {
        qWarning("insertBefore: no chain or no object");
        return false;
    }
    if (newObject->chain()) {
        qWarning("insertBefore: the object is already in a chain");
        return false;
    }
    const qsizetype position = viewObject ? chain->m_objects.indexOf(viewObject) : chain->m_objects.size();
    if (position < 0) {
        qWarning("insertBefore: the object to insert before is in another chain");
        return false;
    }
    chain->insert(position, *newObject);
    return true;
}
