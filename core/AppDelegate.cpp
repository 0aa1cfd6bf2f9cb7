#include "IxAppDelegate.h"

namespace {
IxAppDelegate* theDelegate = nullptr;
}

IxAppDelegate* IxAppDelegate::instance()
{
    return theDelegate;
}

void IxAppDelegate::setInstance(IxAppDelegate* delegate)
{
    theDelegate = delegate;
}
