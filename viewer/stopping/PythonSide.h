#pragma once

#include <QtCore/QString>

/// Prepares the interpreter for the scripts of the viewer, by the package python/vantrel_viewer.
///
/// One object per process, constructed on the GUI thread before the first run.
class PythonSide
{
public:
    /// folder holds the package. With exitEndsScript an uncaught SystemExit ends its script and not the process.
    PythonSide(const QString& folder, bool exitEndsScript);
    ~PythonSide();

    /// The object of this process, or null.
    static PythonSide* instance();

    /// Called before the first run with the loaded plugin's file.
    void interpreterWillStart(const QString& plugin) const;

    /// A script that prepares the interpreter; empty if it is prepared. To be run before the user's script, on the same
    /// thread, which then calls prepared().
    QString preparation() const;
    void prepared();

    /// A script that ends a forked child.
    static QString endOfChild();

private:
    QString m_folder;
    bool m_exitEndsScript;
    bool m_isPrepared = false;
    Q_DISABLE_COPY_MOVE(PythonSide)
};
