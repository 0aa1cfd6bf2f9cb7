#include "Platform.h"

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>
#include <QtGui/QGuiApplication>

#include <clocale>
#include <csignal>
#include <langinfo.h>

namespace {

bool usesDisplay = false; // the environment did not choose another platform

void prepareDisplay()
{
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        return;
    usesDisplay = true;
    // If a display does not answer, Qt tries the next platform of the list.
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "wayland;xcb;offscreen");
    else if (!qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "xcb;offscreen");
    else
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

void prepareLocale()
{
    std::setlocale(LC_ALL, "");
    if (qstricmp(nl_langinfo(CODESET), "UTF-8") == 0)
        return;
    qputenv("LC_ALL", "C.UTF-8");
    std::setlocale(LC_ALL, "");
}

} // namespace

void preparePlatform()
{
    // A file that would become too large is an error of the write, not the end of the process. The interpreter
    // sees it the same way.
    std::signal(SIGXFSZ, SIG_IGN);
    prepareDisplay();
    prepareLocale();
}

bool isDisplayMissing()
{
    return usesDisplay && QGuiApplication::platformName() == QStringLiteral("offscreen");
}

void resetLocale()
{
    for (const int category : {LC_NUMERIC, LC_TIME, LC_COLLATE, LC_MONETARY, LC_MESSAGES})
        std::setlocale(category, "C");
}
