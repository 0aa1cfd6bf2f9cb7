#pragma once

#include "CxChain.h"
#include "CxChainable.h"

#include <memory>

class CxImageData;

/// The object of a processing chain that stands for the view. Stages are inserted before it.
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

    /// Returns a processed copy of the image. Returns the image itself, which never changes, if there is nothing to do
    /// or, with a log line, if there is no memory for a copy.
    std::shared_ptr<CxImageData> processed(const std::shared_ptr<CxImageData>& image);

private:
    ChainEnd* m_end;
};
