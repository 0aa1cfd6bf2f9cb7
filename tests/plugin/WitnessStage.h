#pragma once

#include "CxChain.h"
#include "CxChainable.h"

#include <QtCore/QList>
#include <QtCore/QStringList>

#include <stdexcept>

/// A chain object that tells what a script did to it.
class WitnessStage : public CxChainable
{
    Q_OBJECT
public:
    WitnessStage()
    {
        ++alive;
        setEnabled(false);
    }
    ~WitnessStage() override { --alive; }

    void readConfig(QDomElement conf) override
    {
        steps.append(QStringLiteral("readConfig, chain %1").arg(watched->stopped() ? u"stopped" : u"running"));
        elementName = conf.tagName();
        attributes.clear();
        for (int i = 0; i < conf.attributes().count(); ++i) {
            const QDomNode attribute = conf.attributes().item(i);
            attributes.append(attribute.nodeName() + u'=' + attribute.nodeValue());
        }
        attributes.sort();
        if (throws)
            throw std::runtime_error("the settings are broken");
    }

    void process(CxImageData& /*image*/) override {}

    static inline int alive = 0;
    static inline bool throws = false;
    static inline CxChain* watched = nullptr; ///< the chain whose state is told
    static inline QStringList steps;
    static inline QString elementName;
    static inline QStringList attributes; ///< "name=value", sorted
};

/// An object that a careless host registers as a chain object.
class NoStage : public QObject
{
    Q_OBJECT
public:
    NoStage() { ++alive; }
    ~NoStage() override { --alive; }
    static inline int alive = 0;
};
