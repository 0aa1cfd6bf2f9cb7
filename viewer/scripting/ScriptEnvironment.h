#pragma once

#include "IxScriptEnvironment.h"

#include <functional>

/// The viewer's services for script runs.
class ScriptEnvironment : public IxScriptEnvironment
{
public:
    /// Runs a script file that the user has chosen from a menu; called on the GUI thread.
    using RunFile = std::function<void(const QString& path)>;

    ScriptEnvironment(const QString& workingDirectory, RunFile runFile);

    QList<SxApiParamDef>& apiParamDefs() override;
    QList<SxApiParamEnumVal>& apiParamEnumVals() override;
    bool isCameraParameter(const QString& name) override;
    QString workingDirectory() override;

    /// Absolute and without "." and ".."; an empty path stays empty.
    QString resolveFilePath(const QString& path) override;

    bool isMainThread() override;

    /// The script's path is resolved at once. extra is the item's tool tip and status text.
    void addMenuItem(QMenu* menu, const QString& name, const QString& script, const QString& extra) override;

    /// Seconds; see ScriptWait. False for a null view and off the GUI thread.
    bool waitForNextFrame(CxMdiView* view, double timeout) override;

    /// Seconds; see ScriptWait.
    void wait(double time) override;

    const char* functionHelp(const char* moduleName, const char* functionName) override;
    const char* methodHelp(const char* objectName, const char* methodName) override;

private:
    QString m_workingDirectory;
    RunFile m_runFile;
    QList<SxApiParamDef> m_parameterNames;
    QList<SxApiParamEnumVal> m_pixelTypes;
};
