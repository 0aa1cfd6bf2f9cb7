#pragma once

#include <QtCore/QList>
#include <QtCore/QString>

class CxMdiView;
class QMenu;

/// The services that the host offers to a script run.
///
/// The host passes an environment to every runScript() and keeps owning it. The plugin never deletes it and uses it
/// until the next run passes its own. Every operation is called on the thread that runs the script.
class IxScriptEnvironment
{
public:
    /// A string constant for scripts, published as a global variable.
    struct SxApiParamDef {
        QString name;  ///< name of the variable
        QString value; ///< its text
    };

    /// An integer constant for scripts, published as a global variable.
    struct SxApiParamEnumVal {
        QString name;  ///< name of the variable
        int value = 0; ///< its value
    };

    /// The string constants to publish. Read once, when the interpreter starts.
    virtual QList<SxApiParamDef>& apiParamDefs() = 0;

    /// The integer constants to publish. Read once, when the interpreter starts.
    virtual QList<SxApiParamEnumVal>& apiParamEnumVals() = 0;

    /// True if scripts know a camera parameter of this name (without prefix and range word).
    virtual bool isCameraParameter(const QString& name) = 0;

    /// The running script's working directory.
    virtual QString workingDirectory() = 0;

    /// The absolute path for a path from a script; a relative path starts at the working directory.
    virtual QString resolveFilePath(const QString& path) = 0;

    /// True if called on the GUI thread. On other threads, script functions that use windows refuse to work.
    virtual bool isMainThread() = 0;

    /// Adds a menu item that runs a script file when it is triggered. The host decides what extra means.
    virtual void addMenuItem(QMenu* menu, const QString& name, const QString& script, const QString& extra) = 0;

    /// Blocks until the view shows its next frame or the timeout has passed, and keeps the application responsive.
    /// True if a frame came. The host defines the unit of the timeout and the meaning of a negative one.
    virtual bool waitForNextFrame(CxMdiView* view, double timeout) = 0;

    /// Waits the given time and keeps the application responsive. The host defines the unit.
    virtual void wait(double time) = 0;

    /// Help text of a module's function, or null. The text must stay valid as long as the interpreter lives.
    virtual const char* functionHelp(const char* moduleName, const char* functionName) = 0;

    /// Help text of a method of "cameraObj", "graphObj" or "imgObj", or null. Lifetime as for functionHelp().
    virtual const char* methodHelp(const char* objectName, const char* methodName) = 0;

protected:
    IxScriptEnvironment() = default;
    ~IxScriptEnvironment() = default;
    Q_DISABLE_COPY_MOVE(IxScriptEnvironment)
};
