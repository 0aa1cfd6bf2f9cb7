#pragma once

#include "HostGlobal.h"

#include <QtCore/QObject>
#include <QtXml/QDomElement>

class CxChain;
class CxImageData;

/// An object of a processing chain: a stage that changes images, or the place where a chain ends.
///
/// Belongs to the chain it is inserted into, which deletes it. Deleting it earlier takes it out of its chain. Used on
/// the GUI thread only.
class VANTREL_HOST_EXPORT CxChainable : public QObject
{
    Q_OBJECT
public:
    /// Enabled, and in no chain.
    CxChainable();

    /// Leaves its chain.
    ~CxChainable() override;

    /// Reads the settings from the attributes of the element. Attributes that the stage does not know are ignored; a
    /// value that makes no sense is logged, and its setting takes the default, as does one without an attribute.
    virtual void readConfig(QDomElement conf) = 0;

    /// Changes the pixels of an image in place. Not asked of an object that is switched off. An image that the stage
    /// cannot work on stays as it is, and a log line says why, once for each stage.
    virtual void process(CxImageData& image) = 0;

    /// The chain that the object belongs to, or null.
    CxChain* chain() const;

    /// Switches the object on or off. One that is off lets images pass unchanged.
    void setEnabled(bool enabled);
    bool isEnabled() const;

Q_SIGNALS:
    /// Images would come out differently from now on.
    void changed();

private:
    friend class CxChain;
    CxChain* m_chain = nullptr;
    bool m_enabled = true;
};
