#include "ViewChain.h"

#include "CxChainManager.h"
#include "CxImageData.h"
#include "TakeAs.h"

#include <QtCore/QDebug>

#include <algorithm>

ViewChain::ViewChain()
    : m_end(new ChainEnd)
{
    CxChainManager::instance()->insertBefore(this, m_end, nullptr);
}

std::shared_ptr<CxImageData> ViewChain::processed(const std::shared_ptr<CxImageData>& image)
{
    const QList<CxChainable*> stages = objects();
    const bool isIdle = stopped() || std::none_of(stages.begin(), stages.end(), [this](const CxChainable* object) {
                            return object != m_end && object->isEnabled();
                        });
    if (!image || isIdle)
        return image;
    std::shared_ptr<CxImageData> result = takeAs<CxImageData>(image->clone(nullptr, nullptr));
    if (!result) {
        qCritical() << "Showing an unprocessed image: out of memory";
        return image;
    }
    process(*result);
    return result;
}
