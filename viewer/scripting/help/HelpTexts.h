#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QString>

/// The help texts of everything that scripts can call.
///
/// The returned pointers are valid as long as the object. The interpreter keeps them, so it gets those of instance(),
/// which lives until the process ends.
class HelpTexts
{
public:
    /// The texts in the application's resources, read at the first call.
    static const HelpTexts& instance();

    /// Reads texts in the form that viewer/scripting/help/scripting.txt describes.
    explicit HelpTexts(const QString& source);

    /// The text of a module's function, or null; for example function("vantrel", "wait").
    const char* function(const char* moduleName, const char* functionName) const;

    /// The text of a method, or null. The names of the objects are "cameraObj", "graphObj" and "imgObj".
    const char* method(const char* objectName, const char* methodName) const;

private:
    QHash<QByteArray, QByteArray> m_texts; // key: "vantrel.wait", "Image.crop"
};
