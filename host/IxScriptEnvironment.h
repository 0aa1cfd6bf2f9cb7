#pragma once

#include <QtCore/QList>
#include <QtCore/QString>

class CxMdiView;
class QMenu;

/// What the host offers to one script run.
///
/// The host hands one to every runScript() and stays its owner: the plugin never deletes it, and keeps using it until
/// the next run replaces it. Every operation is called on the thread that runs the script.
class IxScriptEnvironment
{
public:
    /// A string constant for scripts.
    struct SxApiParamDef {
        QString name;  ///< name of the global variable
        QString value; ///< its text
    };

    /// An integer constant for scripts.
    struct SxApiParamEnumVal {
        QString name;  ///< name of the global variable
        int value = 0; ///< its value
    };

    /// The string constants to publish. Read once, when the interpreter starts.
    virtual QList<SxApiParamDef>& apiParamDefs() = 0;

    /// The integer constants to publish. Read once, when the interpreter starts.
    virtual QList<SxApiParamEnumVal>& apiParamEnumVals() = 0;

    /// True when the name (without prefix and range word) is a camera parameter known to scripts.
    virtual bool isCameraParameter(const QString& name) = 0;

    /// The running script's working directory.
    virtual QString workingDirectory() = 0;

    /// The path to use for a path that a script gave: a relative one is made absolute against the working directory.
    virtual QString resolveFilePath(const QString& path) = 0;

    /// True when called on the GUI thread. Script functions that touch windows refuse to work otherwise.
    virtual bool isMainThread() = 0;

    /// Adds an item to the menu that runs the script file when triggered. The meaning of extra is the host's.
    virtual void addMenuItem(QMenu* menu, const QString& name, const QString& script, const QString& extra) = 0;

    /// Blocks until the view shows its next frame or the time-out has passed, while the application keeps working.
    /// Returns true when a frame came. The time-out's unit, and what a negative one means, are the host's.
    virtual bool waitForNextFrame(CxMdiView* view, double timeout) = 0;

    /// Waits the given time while the application keeps working. The unit is the host's.
    virtual void wait(double time) = 0;

    /// Help text of a function of a module, or null. The pointer stays valid for the life of the interpreter.
    virtual const char* functionHelp(const char* moduleName, const char* functionName) = 0;

    /// Help text of a method of "cameraObj", "graphObj" or "imgObj", or null. Lifetime as for functionHelp().
    virtual const char* methodHelp(const char* objectName, const char* methodName) = 0;

protected:
    IxScriptEnvironment() = default;
    ~IxScriptEnvironment() = default;
    Q_DISABLE_COPY_MOVE(IxScriptEnvironment)
};
