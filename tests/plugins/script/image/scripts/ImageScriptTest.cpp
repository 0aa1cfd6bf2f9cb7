// Runs every function test_... of the scripts in image/ as a test of its own. A script that has nothing to test on this
// Python prints "SKIP: " and why.

#include "support/PluginHost.h"

#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>

#include <ostream>
#include <string>
#include <vector>

namespace {

struct ScriptFunction {
    QString file;
    QString function;

    std::string name() const { return (QFileInfo(file).baseName() + QStringLiteral("_") + function).toStdString(); }
};

void PrintTo(const ScriptFunction& test, std::ostream* stream)
{
    *stream << test.name();
}

std::vector<ScriptFunction> scriptFunctions()
{
    std::vector<ScriptFunction> tests;
    static const QRegularExpression definition(QStringLiteral("^def test_(\\w+)\\("),
                                               QRegularExpression::MultilineOption);
    QDirIterator scripts(QStringLiteral(VANTREL_IMAGE_SCRIPTS), {QStringLiteral("*.py")});
    while (scripts.hasNext()) {
        QFile file(scripts.next());
        if (!file.open(QIODevice::ReadOnly))
            qFatal("%s cannot be read", qPrintable(file.fileName()));
        const QString text = QString::fromUtf8(file.readAll());
        for (const auto& match : definition.globalMatch(text))
            tests.push_back({file.fileName(), match.captured(1)});
    }
    return tests;
}

class ImageScript : public SharedPluginTest, public testing::WithParamInterface<ScriptFunction>
{
};

TEST_P(ImageScript, Passes)
{
    const QTemporaryDir folder;
    host.environment.directory = folder.path();
    const QString script = QStringLiteral("import sys\n"
                                          "sys.path.insert(0, r'%1/common')\n"
                                          "sys.dont_write_bytecode = True\n"
                                          "exec(compile(open(r'%2').read(), r'%2', 'exec'))\n"
                                          "test_%3()\n")
                               .arg(QStringLiteral(VANTREL_IMAGE_SCRIPTS), GetParam().file, GetParam().function);
    EXPECT_CLEAN_RUN(script);
    if (host.printed().startsWith(QStringLiteral("SKIP: ")))
        GTEST_SKIP() << host.printed().toStdString();
}

INSTANTIATE_TEST_SUITE_P(Image, ImageScript, testing::ValuesIn(scriptFunctions()),
                         [](const auto& test) { return test.param.name(); });

} // namespace
