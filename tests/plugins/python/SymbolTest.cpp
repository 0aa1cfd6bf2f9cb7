// What the plugin library takes from the Python library, and what it offers to others.

#include "support/TestSettings.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

/// The names in the library's dynamic symbol table.
QStringList symbols(const char* which)
{
    QProcess nm;
    nm.start(QStringLiteral("nm"), {QStringLiteral("-D"), QStringLiteral("--format=just-symbols"),
                                    QString::fromLatin1(which), TestSettings::pluginFile});
    EXPECT_TRUE(nm.waitForFinished()) << nm.errorString().toStdString();
    EXPECT_EQ(nm.exitCode(), 0) << nm.readAllStandardError().toStdString();
    QStringList names;
    for (const QByteArray& line : nm.readAllStandardOutput().split('\n')) {
        if (!line.isEmpty())
            names.append(QString::fromLatin1(line).section(u'@', 0, 0));
    }
    std::sort(names.begin(), names.end());
    return names;
}

QStringList pythonSymbols()
{
    return symbols("--undefined-only").filter(QRegularExpression(QStringLiteral("^_?Py")));
}

QString readText(const char* file)
{
    QFile text(QString::fromUtf8(file));
    EXPECT_TRUE(text.open(QIODevice::ReadOnly)) << file;
    return QString::fromUtf8(text.readAll());
}

TEST(Symbols, TakenFromPythonAreAllInTheStableAbi)
{
    const QStringList stable = readText(STABLE_ABI_SYMBOLS).split(u'\n', Qt::SkipEmptyParts);
    const QStringList used = pythonSymbols();
    EXPECT_GT(used.size(), 20);
    for (const QString& name : used)
        EXPECT_TRUE(stable.contains(name)) << name.toStdString();
}

TEST(Symbols, TakenFromPythonTouchNoThreadStateAndNoInterpreterLock)
{
    const QRegularExpression forbidden(
        QStringLiteral("^_?(PyGILState_|PyThreadState_|PyInterpreterState_|PyThread_|"
                       "PyEval_(SaveThread|RestoreThread|Acquire|Release|InitThreads|ThreadsInitialized|ReInit))"));
    EXPECT_TRUE(QStringLiteral("PyEval_SaveThread").contains(forbidden));
    EXPECT_EQ(pythonSymbols().filter(forbidden), QStringList());
}

TEST(Symbols, OfferedAreExactlyTheExportedOnes)
{
    QStringList exported;
    const QString global =
        readText(EXPORTS_MAP).section(QStringLiteral("global:"), 1).section(QStringLiteral("local:"), 0, 0);
    for (const QString& name : global.split(u';'))
        if (!name.trimmed().isEmpty())
            exported.append(name.trimmed());
    std::sort(exported.begin(), exported.end());
    EXPECT_TRUE(exported.contains(QStringLiteral("qt_plugin_instance")));
    EXPECT_TRUE(exported.contains(QStringLiteral("fx_pyapp_RunPythonString")));
    EXPECT_EQ(symbols("--defined-only"), exported);
}

} // namespace
