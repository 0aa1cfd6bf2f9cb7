#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

/// What the test programs are told on their command line: which Python they test.
struct TestSettings {
    static void read(const QStringList& arguments);

    static QString pluginFile;    ///< --plugin=FILE
    static QString pythonHome;    ///< --python-home=DIR
    static QString pythonVersion; ///< --python-version=3.8
};
