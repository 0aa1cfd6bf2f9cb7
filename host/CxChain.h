#pragma once

#include "HostGlobal.h"

#include <QtCore/QList>
#include <QtCore/QObject>

class CxChainable;
class CxImageData;

/// The processing chain of a view: objects through which every image passes, one after another, before it is shown.
///
/// Owns its objects, which enter through CxChainManager::insertBefore(). Used on the GUI thread only.
class VANTREL_HOST_EXPORT CxChain : public QObject
{
    Q_OBJECT
public:
    /// A running chain without objects.
    explicit CxChain(QObject* parent = nullptr);

    /// Deletes the objects.
    ~CxChain() override;

    /// True between stop() and start().
    bool stopped() const;

    /// Stops the chain: images pass unchanged until start(). Whoever changes several things stops it for so long, so
    /// that nothing is shown half changed.
    void stop();

    void start();

    /// The objects in the order in which images pass them. They stay owned by the chain.
    QList<CxChainable*> objects() const;

    /// Lets every object that is switched on change the image, in order. Does nothing while the chain is stopped.
    void process(CxImageData& image);

Q_SIGNALS:
    /// Images would come out differently from now on: an object was added, left, changed its settings or was switched,
    /// or the chain was stopped or started.
    void changed();

private:
    friend class CxChainManager;
    friend class CxChainable;
    void insert(qsizetype position, CxChainable& object);
    void forget(CxChainable& object);

    QList<CxChainable*> m_objects;
    bool m_stopped = false;
};
