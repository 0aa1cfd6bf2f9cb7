#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <utility>

/// What the call `run` is to do.
struct RunOptions {
    QStringList scripts;
    QStringList filesToOpen;
    QList<std::pair<QString, QString>> images; ///< variable and file
    int simulatedCameras = 2;
    QStringList answers;
    bool worker = false;
    QString workingDirectory; ///< empty: each script's own folder
    QString pythonHome;       ///< empty: the built one
    QString logFile;          ///< empty: standard error
    bool show = false;
};

/// What the call `view` is to do.
struct ViewOptions {
    QStringList files;
};

/// A command line, understood.
struct CommandLine {
    enum class Call {
        Wrong, ///< text says in one sentence why
        Text,  ///< text is what the user asked for, as the usage
        Run,
        View,
    };

    Call call = Call::Wrong;
    QString text;
    RunOptions run;
    ViewOptions view;
};

/// Understands the arguments, the program's name left out.
CommandLine parseCommandLine(const QStringList& arguments);
