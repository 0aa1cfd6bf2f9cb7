#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <utility>

/// The arguments of `vantrel run`.
struct RunOptions {
    QStringList scripts;
    QStringList scriptArguments;
    QStringList filesToOpen;
    QList<std::pair<QString, QString>> images; ///< name of the variable, and file
    int simulatedCameras = 2;
    QStringList answers;
    bool worker = false;
    QString workingDirectory; ///< empty: each script's own folder
    QString pythonHome;       ///< empty: the Python home of this build
    QString environment;      ///< a virtual environment; empty: none
    bool plainOutput = false;
    QString logFile; ///< empty: standard error
    bool show = false;
};

/// The arguments of `vantrel view`.
struct ViewOptions {
    QStringList files;
};

/// A parsed command line.
struct CommandLine {
    enum class Command {
        Invalid, ///< text says in one sentence what is wrong
        Text,    ///< text is what to print, for example the usage
        Run,
        View,
    };

    Command command = Command::Invalid;
    QString text;
    RunOptions run;
    ViewOptions view;
};

/// Parses the arguments that follow the program's name.
CommandLine parseCommandLine(const QStringList& arguments);
