// Destructors of the abstract host classes: one home for their type information, so that casts work across libraries.

#include "CxImageFileLoader.h"
#include "CxImageFileSaver.h"
#include "CxMdiView.h"
#include "CxScriptLangInterface.h"

CxScriptLangInterface::~CxScriptLangInterface() = default;

CxImageFileLoader::~CxImageFileLoader() = default;

CxImageFileSaver::~CxImageFileSaver() = default;

CxMdiView::~CxMdiView() = default;

void CxMdiView::closeMdiView()
{
    doClose();
}
