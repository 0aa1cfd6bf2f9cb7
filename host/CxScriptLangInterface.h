#pragma once

#include "HostGlobal.h"

#include <QtCore/QString>
#include <QtCore/QtPlugin>

class CxImageData;
class IxScriptEnvironment;

/// A script language that a plugin offers to the host.
///
/// The host obtains the object from the plugin library with QPluginLoader::instance() and
/// qobject_cast<CxScriptLangInterface*>. The host calls init() once, then runScript() any number of times, with calls
/// of addImageVariable() between the runs. Finally the host deletes the object.
class VANTREL_HOST_EXPORT CxScriptLangInterface
{
public:
    /// Shuts the interpreter down if a run has started it.
    virtual ~CxScriptLangInterface();

    /// Prepares the object. Called once, before any other operation. Always returns true.
    virtual bool init() = 0;

    /// The language and the interpreter's version for the user interface, such as "Python 3.8.10". May be called before
    /// the interpreter has started.
    virtual QString languageVersion() = 0;

    /// Runs a script synchronously on the calling thread.
    ///
    /// script       the source text.
    /// environment  the services for this run. The host owns it and keeps it valid until the next run brings another
    ///              one or until no script code can run any more.
    /// pythonHome   the interpreter's home directory. Used by the run that starts the interpreter, ignored by others.
    /// started      may be null; called as started(nullptr, startedData) after the interpreter has started and before
    ///              any of the script's code runs.
    /// output       may be null; called for every piece of text that the script writes to its standard output, on the
    ///              running thread and while the script runs. Its second argument is always false.
    ///
    /// Returns the text that the script wrote to its standard error, tracebacks included; empty if it wrote none.
    ///
    /// A C++ exception from an operation of the host or from a callback ends the script and the run. The script's
    /// handlers do not run, and the script no longer reaches the host. The collected text is dropped, the result is
    /// "Python rasied exception", and a log line reports it.
    ///
    /// A script that raises SystemExit ends the process. The call then does not return, and the collected text goes to
    /// the process's standard error.
    ///
    /// Calls from several threads run one after another. Use one thread for all runs nevertheless: a compiled module
    /// that acquires the interpreter lock itself waits for ever in a run on a thread other than that of the first run.
    /// Not reentrant: a run must not start another one on its thread.
    virtual QString runScript(const QString& script, IxScriptEnvironment* environment, const QString& pythonHome,
                              void (*started)(void*, void*), void* startedData,
                              void (*output)(const QString&, bool)) = 0;

    /// Makes an image visible to later scripts as a global variable and replaces the name's previous value. The
    /// variable stays until a script or another call replaces or deletes it. The host owns the image and keeps it alive
    /// as long as a script can use it. Called only after the first run and never during a run.
    virtual void addImageVariable(const QString& name, CxImageData* image) = 0;
};

Q_DECLARE_INTERFACE(CxScriptLangInterface, "com.tesmo.CxScriptLangInterface")
