#pragma once

#include "HostGlobal.h"

#include <QtCore/QList>
#include <QtCore/QObject>

class CxChainable;
class CxImageData;

/// The processing chain of a view. Before an image is shown, each object of the chain processes it in turn.
///
/// Owns its objects; CxChainManager::insertBefore() adds them. Used on the GUI thread only.
class VANTREL_HOST_EXPORT CxChain : public QObject
{
    Q_OBJECT
public:
    /// A running chain without objects.
    explicit CxChain(QObject* parent = nullptr);

    /// Deletes the chain's objects.
    ~CxChain() override;

    /// True between stop() and start().
    bool stopped() const;

    /// Stops the chain: images pass unchanged until start(). Stop the chain to make several changes at once, so that no
    /// image is shown half changed.
    void stop();

    void start();

    /// The objects in processing order. Owned by the chain.
    QList<CxChainable*> objects() const;

    /// Processes the image in place with every enabled object, in order. Does nothing while the chain is stopped.
    void process(CxImageData& image);

Q_SIGNALS:
    /// The result of process() may differ from now on: the list of objects or an object's settings have changed, an
    /// object was switched on or off, or the chain was stopped or started.
    void changed();

private:
    friend class CxChainManager;
    friend class CxChainable;
    void insert(qsizetype position, CxChainable& object);
    void forget(CxChainable& object);

    QList<CxChainable*> m_objects;
    bool m_stopped = false;
};
