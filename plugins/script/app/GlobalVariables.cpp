#include "GlobalVariables.h"

#include "CxImageData.h"

#include <QtCore/QMap>
#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>

#include <memory>
#include <utility>

// In this order, so that the lock is destroyed first when the library is unloaded. The images are not deleted then,
// because the core library that made them may be unloaded earlier.
static QMap<QString, CxImageData*> g_mapGlobalVarImg;
static QMap<QString, int> g_mapGlobalVarInt;
static QMap<QString, QString> g_mapGlobalVarString;
static QMutex g_lockGlobalVars;

static std::unique_ptr<CxImageData> copyOf(CxImageData& image)
{
    std::unique_ptr<QObject> object(image.copy(false));
    auto* copy = qobject_cast<CxImageData*>(object.get());
    if (copy)
        static_cast<void>(object.release());
    return std::unique_ptr<CxImageData>(copy);
}

void fx_vars_setImage(const QString& name, CxImageData* image)
{
    const QMutexLocker locker(&g_lockGlobalVars);
    const auto entry = g_mapGlobalVarImg.find(name);
    if (entry != g_mapGlobalVarImg.end()) {
        if (entry.value() == image)
            return;
        delete std::exchange(entry.value(), nullptr);
    }
    if (!image)
        return;
    std::unique_ptr<CxImageData> copy = copyOf(*image);
    g_mapGlobalVarImg[name] = copy.get();
    static_cast<void>(copy.release());
}

void fx_vars_readImage(const QString& name, const std::function<void(CxImageData*)>& use)
{
    const QMutexLocker locker(&g_lockGlobalVars);
    use(g_mapGlobalVarImg.value(name, nullptr));
}

void fx_vars_setInt(const QString& name, int value)
{
    const QMutexLocker locker(&g_lockGlobalVars);
    if (!name.isEmpty())
        g_mapGlobalVarInt.insert(name, value);
}

void fx_vars_readInt(const QString& name, const std::function<void(int)>& use)
{
    const QMutexLocker locker(&g_lockGlobalVars);
    use(g_mapGlobalVarInt.value(name, -1));
}

void fx_vars_setString(const QString& name, const QString& value)
{
    const QMutexLocker locker(&g_lockGlobalVars);
    if (!name.isEmpty())
        g_mapGlobalVarString.insert(name, value);
}

void fx_vars_readString(const QString& name, const std::function<void(const QString&)>& use)
{
    const QMutexLocker locker(&g_lockGlobalVars);
    use(g_mapGlobalVarString.value(name));
}
