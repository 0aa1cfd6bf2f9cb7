#pragma once

#include "HostGlobal.h"

#include <QtCore/QString>
#include <QtCore/QtPlugin>

class CxImageData;
class IxScriptEnvironment;

/// A script language that a plugin offers to the host.
///
/// The host obtains the object from the plugin library with QPluginLoader::instance() and
/// qobject_cast<CxScriptLangInterface*>. It calls init() once, then any number of runScript() with
/// addImageVariable() between them, and at last deletes the object.
class VANTREL_HOST_EXPORT CxScriptLangInterface
{
public:
    /// Shuts the interpreter down if a run has started it.
    virtual ~CxScriptLangInterface();

    /// Readies the object; called once, before any other operation. Always true.
    virtual bool init() = 0;

    /// The language and the interpreter's version for the user interface, as in "Python 3.8.10". May be called before
    /// the interpreter has been started.
    virtual QString languageVersion() = 0;

    /// Runs a script synchronously on the calling thread.
    ///
    /// script       the source text.
    /// environment  the services for this run. Stays owned by the host, which keeps it valid until the next run brings
    ///              another one or until no script code can run any more.
    /// pythonHome   the interpreter's home directory; used by the run that starts the interpreter, ignored by others.
    /// started      may be null; called as started(nullptr, startedData) after the interpreter has started and before
    ///              any of the script's code runs.
    /// output       may be null; called for every piece of text that the script writes to its standard output, on the
    ///              running thread and while the script runs. Its second argument is always false.
    ///
    /// Returns what the script wrote to its standard error, tracebacks included; empty when it wrote nothing. A C++
    /// exception from an operation of the host or from a callback ends the script and the run: the script's handlers do
    /// not run, nothing of the script reaches the host any more, what was collected is dropped, the result is
    /// "Python rasied exception", and a log line says so. A script that raises SystemExit ends the process: then the
    /// call does not return, and what was collected goes to the process's standard error.
    ///
    /// Calls from several threads run one after another. Give all runs to one thread all the same: compiled modules
    /// that ask for the interpreter lock by themselves wait for ever in a run on another thread than that of the first
    /// run. Not reentrant: a run must not start another one on its thread.
    virtual QString runScript(const QString& script, IxScriptEnvironment* environment, const QString& pythonHome,
                              void (*started)(void*, void*), void* startedData,
                              void (*output)(const QString&, bool)) = 0;

    /// Makes an image visible to later scripts as a global variable, in place of what the name stood for. The variable
    /// stays until a script or another call gives the name away. The image stays owned by the host, which keeps it
    /// alive for as long as a script can use it. Called only after a first run and never during one.
    virtual void addImageVariable(const QString& name, CxImageData* image) = 0;
};

Q_DECLARE_INTERFACE(CxScriptLangInterface, "com.tesmo.CxScriptLangInterface")
