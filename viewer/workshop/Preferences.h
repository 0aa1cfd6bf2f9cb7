#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

/// What the user has chosen for all starts of the viewer, in the user's configuration folder.
namespace Preferences {

/// The absolute path of the virtual environment for scripts; empty: none.
QString environment();
void setEnvironment(const QString& folder);

/// The absolute paths of the scripts that were used last, the newest first.
QStringList recentScripts();
void noteRecentScript(const QString& path);

/// The absolute paths of the scripts in the editor.
QStringList openScripts();
void setOpenScripts(const QStringList& paths);

/// The size of the editor's text, in steps from the usual one.
int editorZoom();
void setEditorZoom(int steps);

/// How the window was arranged; empty: never yet.
QByteArray windowGeometry();
QByteArray windowState();
void setWindow(const QByteArray& geometry, const QByteArray& state);

} // namespace Preferences
