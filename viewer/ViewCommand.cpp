#include "ViewCommand.h"

#include "CommandLine.h"
#include "Viewer.h"
#include "stopping/EventLoops.h"
#include "workshop/Preferences.h"

#include <QtCore/QDebug>
#include <QtWidgets/QApplication>

int openViewer(const ViewOptions& options)
{
    Viewer::Settings settings;
    settings.showsOutput = true;
    settings.exitEndsScript = true;
    settings.environment = qEnvironmentVariable("VIRTUAL_ENV", Preferences::environment());
    Viewer viewer(settings);
    // The viewer is useful even if it cannot run scripts.
    if (const QString problem = viewer.loadScripting(); !problem.isEmpty()) {
        qCritical().noquote() << problem;
        viewer.window().showNotification(problem);
    }
    viewer.window().show();
    if (QGuiApplication::platformName() == QStringLiteral("offscreen"))
        qWarning() << "There is no display: the windows are invisible";
    const QStringList failures = viewer.window().views().openFiles(options.files);
    if (options.files.size() > 1)
        viewer.window().views().tile();
    if (!failures.isEmpty())
        viewer.window().showNotification(failures.join(QLatin1Char('\n')));
    return EventLoops::run();
}
