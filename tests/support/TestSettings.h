#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

/// Settings from the command line of a test program: the plugin and Python to test.
struct TestSettings {
    static void read(const QStringList& arguments);

    /// Whether the Python under test is at least 3.MINOR.
    static bool isPythonAtLeast3(int minor);

    static QString pluginFile;    ///< --plugin=FILE
    static QString pythonHome;    ///< --python-home=DIR
    static QString pythonVersion; ///< --python-version=3.8
};
