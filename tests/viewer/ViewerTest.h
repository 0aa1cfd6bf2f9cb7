#pragma once

#include "Viewer.h"
#include "scripting/ScriptEnvironment.h"
#include "scripting/ScriptQueue.h"
#include "support/TestSettings.h"

#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtGui/QAction>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPlainTextEdit>

#include <gtest/gtest.h>

#include <functional>

/// A viewer with its window, in the test's own process.
class ViewerTest : public testing::Test
{
protected:
    void SetUp() override
    {
        qputenv("VANTREL_PLUGIN", QFile::encodeName(TestSettings::pluginFile));
        QApplication::setQuitOnLastWindowClosed(false);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.filePath(QStringLiteral("config")));
        Viewer::Settings settings;
        settings.pythonHome = TestSettings::pythonHome;
        settings.showsOutput = true;
        settings.exitEndsScript = true;
        viewer = std::make_unique<Viewer>(settings);
        ASSERT_EQ(viewer->loadScripting(), QString());
        QObject::connect(&viewer->scripts(), &ScriptQueue::runEnded,
                         [this](const QString& result) { results += result; });
    }

    /// Runs the event loop until no script is left to run.
    void runAll()
    {
        QEventLoop loop;
        QObject::connect(&viewer->scripts(), &ScriptQueue::becameIdle, &loop, &QEventLoop::quit);
        QTimer::singleShot(60000, &loop, [&loop] {
            ADD_FAILURE() << "the scripts do not end";
            loop.quit();
        });
        loop.exec();
    }

    /// Does something from the event loop, and so while the script waits, as soon as a condition holds.
    void once(const std::function<bool()>& holds, const std::function<void()>& act)
    {
        auto* timer = new QTimer(&viewer->window());
        QObject::connect(timer, &QTimer::timeout, timer, [timer, holds, act] {
            if (!holds())
                return;
            timer->deleteLater();
            timer->stop();
            act();
        });
        timer->start(1);
    }

    /// Does something when the script has printed a text and waits.
    void oncePrinted(const char* text, const std::function<void()>& act)
    {
        once([this, text] { return console() == QString::fromUtf8(text); }, act);
    }

    /// Runs a script from a file of its own, when those before it have ended.
    void run(const QByteArray& script) { viewer->runFile(write(nextScript().constData(), script.constData())); }

    /// The file name of the script that run() will run: s.py, then s2.py and so on.
    QByteArray nextScript() { return ++m_scripts == 1 ? "s.py" : "s" + QByteArray::number(m_scripts) + ".py"; }

    /// Closes the window while a script runs, and answers the question.
    void stopAndClose()
    {
        viewer->window().close();
        for (auto* box : viewer->window().findChildren<QMessageBox*>())
            for (QAbstractButton* button : box->buttons())
                if (button->text().remove(u'&') == QStringLiteral("Stop and Close"))
                    return button->click();
        ADD_FAILURE() << "no question";
    }

    QString write(const char* name, const char* text)
    {
        QFile file(folder.filePath(QString::fromUtf8(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return file.fileName();
    }

    QString console() const { return text("scriptOutput"); }

    /// What a panel of the window shows.
    QString text(const char* name) const
    {
        return viewer->window().findChild<QPlainTextEdit*>(QString::fromUtf8(name))->toPlainText();
    }

    QAction* addItem(const QString& script)
    {
        QMenu* menu = viewer->window().menu(MainWindow::ScriptMenu);
        ScriptEnvironment environment(folder.path(), [this](const QString& path) { viewer->runFile(path); });
        environment.addMenuItem(menu, QStringLiteral("Tool"), script, QString());
        return menu->actions().last();
    }

    QTemporaryDir folder;
    std::unique_ptr<Viewer> viewer;
    QStringList results;

private:
    int m_scripts = 0;
};
