#include "ViewCommand.h"

#include "CommandLine.h"
#include "Viewer.h"

#include <QtCore/QDebug>
#include <QtWidgets/QApplication>

int openViewer(const ViewOptions& options)
{
    Viewer::Settings settings;
    settings.showsOutput = true;
    settings.staysOnExit = true;
    settings.environment = qEnvironmentVariable("VIRTUAL_ENV");
    Viewer viewer(settings);
    // The viewer is useful even if it cannot run scripts.
    if (const QString problem = viewer.loadScripting(); !problem.isEmpty()) {
        qCritical().noquote() << problem;
        viewer.window().showNotification(problem);
    }
    viewer.window().show();
    if (QGuiApplication::platformName() == QStringLiteral("offscreen"))
        qWarning() << "There is no display: the windows are invisible";
    QStringList failed;
    for (const QString& path : options.files)
        if (!viewer.window().views().openFile(path))
            failed += path;
    if (options.files.size() > 1)
        viewer.window().views().tile();
    if (!failed.isEmpty())
        viewer.window().showNotification(
            MainWindow::tr("Cannot open as an image: %1").arg(failed.join(QStringLiteral(", "))));
    return QApplication::exec();
}
