#include "CxImageFormatManager.h"

CxImageFormatManager* CxImageFormatManager::instance()
{
    static CxImageFormatManager manager;
    return &manager;
}

// No format is registered yet.
CxImageFileLoader* CxImageFormatManager::loaderForFile(const QString& /*path*/)
{
    return nullptr;
}

CxImageFileSaver* CxImageFormatManager::saverForFile(const QString& /*path*/)
{
    return nullptr;
}

QStringList CxImageFormatManager::extensions() const
{
    return QStringList();
}
