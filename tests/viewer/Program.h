#pragma once

#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

/// Runs the built program with scripts of a folder of its own.
class ProgramTest : public testing::Test
{
protected:
    struct Outcome {
        int status = -1; ///< -1 when the program did not end by itself
        int signal = 0;  ///< that ended the program
        std::string output;
        std::string errors;
    };

    /// Writes a file into the folder; returns its path.
    QString write(const char* name, const QByteArray& content);

    QByteArray read(const char* name) const;

    QString path(const char* name) const { return folder.filePath(QString::fromUtf8(name)); }

    /// Runs the program with arguments as they are. whenRunning is called once something has been printed.
    Outcome call(const QStringList& arguments, const std::function<void(QProcess&)>& whenRunning = {});

    /// `vantrel run` with the Python under test, options, and one script of this text.
    Outcome run(const char* script, const QStringList& options = {},
                const std::function<void(QProcess&)>& whenRunning = {});

    QTemporaryDir folder;
    QProcessEnvironment environment = withoutDisplay();

private:
    static QProcessEnvironment withoutDisplay();
};

/// Arguments as a list.
QStringList list(std::initializer_list<const char*> texts);
