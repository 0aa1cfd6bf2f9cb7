#pragma once

#include "CxChain.h"
#include "CxChainable.h"

#include <memory>

class CxImageData;

/// The place in a processing chain that stands for the view: stages are inserted before it.
class ChainEnd : public CxChainable
{
    Q_OBJECT
public:
    void readConfig(QDomElement /*conf*/) override {}
    void process(CxImageData& /*image*/) override {}
};

/// The processing chain of one view.
class ViewChain : public CxChain
{
    Q_OBJECT
public:
    ViewChain();

    /// The object that stands for the view; owned by the chain.
    CxChainable* end() const { return m_end; }

    /// What the stages make of an image. The image itself stays unchanged: it is the result when there is nothing to
    /// do, and also, with a log line, when there is no memory for another one.
    std::shared_ptr<CxImageData> processed(const std::shared_ptr<CxImageData>& image);

private:
    ChainEnd* m_end;
};
