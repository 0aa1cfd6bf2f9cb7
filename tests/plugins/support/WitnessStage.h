#pragma once

#include "CxChainable.h"

#include <QtCore/QList>
#include <QtCore/QStringList>

#include <functional>
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
        connect(this, &CxChainable::changed, this, [] { steps.append(QStringLiteral("switched on")); });
    }
    ~WitnessStage() override { --alive; }

    void readConfig(QDomElement conf) override
    {
        steps.append(
            QStringLiteral("configured, %1, %2").arg(isEnabled() ? u"on" : u"off", chain() ? u"inside" : u"outside"));
        elementName = conf.tagName();
        elementIsRoot = !conf.isNull() && conf == conf.ownerDocument().documentElement();
        attributes.clear();
        for (int i = 0; i < conf.attributes().count(); ++i) {
            const QDomNode attribute = conf.attributes().item(i);
            attributes.append(attribute.nodeName() + u'=' + attribute.nodeValue());
        }
        attributes.sort();
        if (throws)
            throw std::runtime_error("the settings are broken");
        if (onConfigured)
            onConfigured(*this);
    }

    void process(CxImageData& /*image*/) override {}

    static inline int alive = 0;
    static inline bool throws = false;
    static inline std::function<void(WitnessStage&)> onConfigured;
    static inline QStringList steps; ///< what was done to any of them
    static inline QString elementName;
    static inline bool elementIsRoot = false; ///< the document's one element
    static inline QStringList attributes;     ///< "name=value", sorted
};

/// A stage of another class.
class SecondStage : public WitnessStage
{
    Q_OBJECT
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
