#pragma once

#include "HostGlobal.h"

#include <QtCore/QObject>
#include <QtXml/QDomElement>

class CxChain;
class CxImageData;

/// An object of a processing chain: a stage that changes images, or the end of the chain.
///
/// The chain that an object is inserted into owns and deletes it. An object that is deleted earlier leaves its chain
/// first. Used on the GUI thread only.
class VANTREL_HOST_EXPORT CxChainable : public QObject
{
    Q_OBJECT
public:
    /// An enabled object that belongs to no chain.
    CxChainable();

    /// Leaves its chain.
    ~CxChainable() override;

    /// Reads the settings from the attributes of an element. A setting without an attribute takes its default, and so
    /// does one with an invalid value, which is logged. Unknown attributes are ignored.
    virtual void readConfig(QDomElement conf) = 0;

    /// Changes the pixels of an image in place. The chain skips this for disabled objects. An image that the stage
    /// cannot process stays unchanged; the stage logs the reason once, not for every image.
    virtual void process(CxImageData& image) = 0;

    /// The chain that the object belongs to, or null.
    CxChain* chain() const;

    /// Switches the object on or off. While it is off, images pass it unchanged.
    void setEnabled(bool enabled);
    bool isEnabled() const;

Q_SIGNALS:
    /// The result of process() may differ from now on.
    void changed();

private:
    friend class CxChain;
    CxChain* m_chain = nullptr;
    bool m_enabled = true;
};
