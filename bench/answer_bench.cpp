// How long the window takes to answer while a script works: events arrive at random moments from another thread, as
// clicks do.
//
//   answer_bench [--filter=TEXT]

#include "Row.h"
#include "Viewer.h"
#include "process/LogRecords.h"
#include "scripting/ScriptQueue.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <random>
#include <unistd.h>
#include <vector>

namespace {

constexpr int clicks = 200;

struct Kind {
    const char* name;
    const char* script;
};

constexpr Kind kinds[] = {
    {"busy loop", "while True: pass\n"},
    {"comprehension", "sum(1 for i in iter(int, 1))\n"},
    {"sleep", "import time\ntime.sleep(1000)\n"},
    {"read from a socket", "import socket\na, b = socket.socketpair()\na.recv(1)\n"},
    {"program", "import subprocess\nsubprocess.run(['sleep', '1000'])\n"},
    {"print in a loop", "i = 0\nwhile True:\n    i += 1\n    print('line', i)\n"},
    {"live camera, busy loop", "import vantrel\ncamera = vantrel.Camera()\ncamera.open_device(0)\n"
                               "camera.start_acquisition()\nwhile True: pass\n"},
};

/// Sends the clicks to the window and notes in milliseconds how long each one waited.
std::vector<double> answers(Viewer& viewer)
{
    std::vector<double> waited;
    std::mt19937 random(1);
    QThread::msleep(500); // the script works
    for (int i = 0; i < clicks; ++i) {
        QThread::msleep(std::uniform_int_distribution<unsigned long>(1, 60)(random));
        QElapsedTimer clock;
        clock.start();
        QMetaObject::invokeMethod(
            &viewer.window(), [&] { waited.push_back(double(clock.nsecsElapsed()) / 1e6); },
            Qt::BlockingQueuedConnection);
    }
    QMetaObject::invokeMethod(&viewer.runState(), &RunState::stop, Qt::QueuedConnection);
    return waited;
}

} // namespace

int main(int argc, char** argv)
{
    LogRecords::writeToStandardError();
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    Viewer::Settings settings;
    settings.showsOutput = true;
    Viewer viewer(settings);
    if (const QString problem = viewer.loadScripting(); !problem.isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(problem));
        return 1;
    }
    viewer.window().show();
    // The rows go to the standard output. What the scripts print, and the tracebacks of their stops, go nowhere.
    const int rows = dup(STDOUT_FILENO);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDERR_FILENO);
    const QTemporaryDir folder;
    const char* group = "Answer to a click while a script works";
    for (const Kind& kind : kinds) {
        if (!isWanted(group, kind.name))
            continue;
        std::vector<double> waited;
        const std::unique_ptr<QThread> hand(QThread::create([&] { waited = answers(viewer); }));
        QEventLoop loop;
        QObject::connect(&viewer.scripts(), &ScriptQueue::becameIdle, &loop, &QEventLoop::quit);
        QFile script(folder.filePath(QStringLiteral("script.py")));
        if (script.open(QIODevice::WriteOnly))
            script.write(kind.script);
        script.close();
        dup2(nowhere, STDOUT_FILENO);
        viewer.runFile(script.fileName());
        hand->start();
        loop.exec();
        hand->wait();
        std::sort(waited.begin(), waited.end());
        std::fflush(stdout);
        dup2(rows, STDOUT_FILENO);
        printRow({group, kind.name, "100 ms, median", 1.0, waited[waited.size() / 2], 100.0, "ms"});
        printRow({group, kind.name, "250 ms, longest", 1.0, waited.back(), 250.0, "ms"});
    }
    return 0;
}
