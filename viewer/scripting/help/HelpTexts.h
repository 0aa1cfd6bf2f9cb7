#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QString>

/// The help texts of everything scripts can call, read once from the application's resources.
///
/// The texts stay where they are for the life of the process: the interpreter keeps pointers to them.
class HelpTexts
{
public:
    static const HelpTexts& instance();

    /// Reads texts in the form that viewer/scripting/help/scripting.txt describes.
    explicit HelpTexts(const QString& source);

    /// The text of a function of a module, or null: functionHelp("vantrel", "wait").
    const char* function(const char* moduleName, const char* functionName) const;

    /// The text of a method, or null; objects are named "cameraObj", "graphObj" and "imgObj".
    const char* method(const char* objectName, const char* methodName) const;

private:
    QHash<QByteArray, QByteArray> m_texts; // by "vantrel.wait", "Image.crop"
};
