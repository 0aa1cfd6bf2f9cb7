// The registration of vantrel.Graph when the interpreter cannot make the type.

#include "ScriptModule.h"

#include <QtCore/QStringList>

#include <gtest/gtest.h>

// Stands before the interpreter's own: a type is never made in this program.
extern "C" PyObject* PyType_FromSpec(PyType_Spec* /*spec*/)
{
    return nullptr;
}

namespace {

QStringList logged;

TEST(GraphType, IsNotAddedAndLogsOneLineWhenItCannotBeMade)
{
    logged.clear();
    const QtMessageHandler before =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
            logged.append((type == QtCriticalMsg ? QStringLiteral("critical ") : QStringLiteral("other ")) + text);
        });
    fx_pygraphs_TypeReady();
    qInstallMessageHandler(before);
    ASSERT_EQ(logged.size(), 1) << logged.join(u'\n').toStdString();
    const std::string line = logged.first().toStdString();
    EXPECT_TRUE(logged.first().startsWith(QStringLiteral("critical "))) << line;
    EXPECT_TRUE(logged.first().contains(QStringLiteral("FuncGraph.cpp"))) << line;
    EXPECT_TRUE(
        logged.first().contains(QStringLiteral("fx_pygraphs_TypeReady(): Failed to register vantrel.GraphType")))
        << line;
    EXPECT_EQ(fx_pygraphs_TypeAdd(nullptr), 0);
}

} // namespace
