// The destructors of the abstract host classes. Defining them here keeps the type information of each class in one
// library, so that casts work across libraries.

#include "CxImageFileLoader.h"
#include "CxImageFileSaver.h"
#include "CxMdiView.h"
#include "CxScriptLangInterface.h"
#include "IxCameraDevice.h"

CxScriptLangInterface::~CxScriptLangInterface() = default;

CxImageFileLoader::~CxImageFileLoader() = default;

CxImageFileSaver::~CxImageFileSaver() = default;

IxCameraDevice::~IxCameraDevice() = default;

CxMdiView::~CxMdiView() = default;

void CxMdiView::closeMdiView()
{
    doClose();
}
