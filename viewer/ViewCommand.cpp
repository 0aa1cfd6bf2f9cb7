#include "ViewCommand.h"

#include "CommandLine.h"
#include "Viewer.h"
#include "stopping/EventLoops.h"
#include "workshop/Preferences.h"

#include <QtCore/QDebug>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <functional>
#include <iterator>

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
    viewer.restoreWindow();
    viewer.window().show();
    if (QGuiApplication::platformName() == QStringLiteral("offscreen"))
        qWarning() << "There is no display: the windows are invisible";
    const auto isScript = [](const QString& file) { return file.endsWith(QStringLiteral(".py")); };
    QStringList images;
    std::copy_if(options.files.begin(), options.files.end(), std::back_inserter(images), std::not_fn(isScript));
    const QStringList failures = viewer.window().views().openFiles(images);
    if (images.size() > 1)
        viewer.window().views().tile();
    if (!failures.isEmpty())
        viewer.window().showNotification(failures.join(QLatin1Char('\n')));
    for (const QString& file : options.files)
        if (isScript(file))
            viewer.editFile(file);
    return EventLoops::run();
}
