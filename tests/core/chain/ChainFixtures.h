#pragma once

#include "CxChainable.h"

#include <functional>

/// A stage that only tells that it was asked.
class NotingStage : public CxChainable
{
    Q_OBJECT
public:
    void readConfig(QDomElement /*conf*/) override {}
    void process(CxImageData& /*image*/) override
    {
        if (onProcess)
            onProcess();
    }

    std::function<void()> onProcess;
};
