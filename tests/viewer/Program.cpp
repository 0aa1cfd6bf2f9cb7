#include "Program.h"

#include "support/TestSettings.h"

#include <QtCore/QFile>

namespace {
constexpr int longestRunMilliseconds = 120000;
}

QString ProgramTest::write(const char* name, const QByteArray& content)
{
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(content), content.size());
    return file.fileName();
}

QByteArray ProgramTest::read(const char* name) const
{
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return file.readAll();
}

ProgramTest::Outcome ProgramTest::call(const QStringList& arguments, const std::function<void(QProcess&)>& whenRunning)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder.path());
    process.start(QStringLiteral(VANTREL_PROGRAM), arguments);
    if (whenRunning) {
        EXPECT_TRUE(process.waitForReadyRead(longestRunMilliseconds)) << "the script has not begun";
        whenRunning(process);
    }
    Outcome outcome;
    if (!process.waitForFinished(longestRunMilliseconds)) {
        ADD_FAILURE() << "the program does not end";
        process.kill();
        process.waitForFinished();
    }
    if (process.exitStatus() == QProcess::NormalExit)
        outcome.status = process.exitCode();
    else
        outcome.signal = process.exitCode();
    outcome.output = process.readAllStandardOutput().toStdString();
    outcome.errors = process.readAllStandardError().toStdString();
    return outcome;
}

ProgramTest::Outcome ProgramTest::run(const char* script, const QStringList& options,
                                      const std::function<void(QProcess&)>& whenRunning)
{
    const QStringList arguments = list({"run", "--python-home"}) + QStringList(TestSettings::pythonHome) + options;
    return call(arguments + QStringList(write("script.py", script)), whenRunning);
}

QProcessEnvironment ProgramTest::withoutDisplay()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromUtf8(name));
    environment.insert(QStringLiteral("VANTREL_PLUGIN"), TestSettings::pluginFile);
    return environment;
}

QStringList list(std::initializer_list<const char*> texts)
{
    QStringList result;
    for (const char* text : texts)
        result += QString::fromUtf8(text);
    return result;
}
