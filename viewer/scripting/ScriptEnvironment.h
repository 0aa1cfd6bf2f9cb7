#pragma once

#include "IxScriptEnvironment.h"

#include <functional>

class QThread;

/// The viewer's services for script runs.
class ScriptEnvironment : public IxScriptEnvironment
{
public:
    /// Runs a script file that the user has chosen from a menu. Called on the GUI thread.
    using RunFile = std::function<void(const QString& path)>;

    /// Constructed on the GUI thread.
    ScriptEnvironment(const QString& workingDirectory, RunFile runFile);

    QList<SxApiParamDef>& apiParamDefs() override;
    QList<SxApiParamEnumVal>& apiParamEnumVals() override;
    bool isCameraParameter(const QString& name) override;
    QString workingDirectory() override;

    /// Returns the absolute path without "." and "..", starting from the working directory. An empty path stays empty.
    QString resolveFilePath(const QString& path) override;

    bool isMainThread() override;

    /// Resolves the script's path now, not when the user chooses the item. extra is the item's tool tip and status
    /// text; without it the tool tip is the name.
    void addMenuItem(QMenu* menu, const QString& name, const QString& script, const QString& extra) override;

    /// timeout is in seconds; see ScriptWait::forImage(). Returns false for a null view and off the GUI thread.
    bool waitForNextFrame(CxMdiView* view, double timeout) override;

    /// time is in seconds; see ScriptWait::forTime().
    void wait(double time) override;

    const char* functionHelp(const char* moduleName, const char* functionName) override;
    const char* methodHelp(const char* objectName, const char* methodName) override;

private:
    QThread* m_guiThread; ///< a script may replace the application object
    QString m_workingDirectory;
    RunFile m_runFile;
    QList<SxApiParamDef> m_parameterNames;
    QList<SxApiParamEnumVal> m_pixelTypes;
};
