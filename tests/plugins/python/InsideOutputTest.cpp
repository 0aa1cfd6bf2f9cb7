// Installing and undoing the redirection, called directly.

#include "OutputRedirection.h"
#include "plugins/support/InsideTest.h"
#include "support/PyRef.h"

namespace {

class Redirection : public InsideTest
{
protected:
    Redirection() { run("pass"); }

    static PyObject* stream() { return PySys_GetObject("stdout"); }

    /// What write() returns for a text, or -1 for an error.
    static long write(const char* text)
    {
        const PyRef result = PyRef::take(PyObject_CallMethod(stream(), "write", "s", text));
        PyErr_Clear();
        return result ? PyLong_AsLong(result.get()) : -1;
    }
};

TEST_F(Redirection, IsInstalledAndUndone)
{
    PyObject* before = stream();
    std::string got;
    emb::set_stdout([&got](const std::string& text) { got += text; });
    EXPECT_NE(stream(), before);
    EXPECT_EQ(write("größe"), 7);
    EXPECT_EQ(got, "größe");
    emb::reset_stdout();
    EXPECT_EQ(stream(), before);
}

TEST_F(Redirection, StreamsAreIndependent)
{
    PyObject* out = stream();
    PyObject* err = PySys_GetObject("stderr");
    emb::set_stderr([](const std::string&) {});
    EXPECT_EQ(stream(), out);
    EXPECT_NE(PySys_GetObject("stderr"), err);
    emb::set_stdout([](const std::string&) {});
    emb::reset_stderr();
    EXPECT_NE(stream(), out);
    EXPECT_EQ(PySys_GetObject("stderr"), err);
    emb::reset_stdout();
}

TEST_F(Redirection, SecondInstallOnlyReplacesTheFunctionAndDestroysTheOldOne)
{
    PyObject* before = stream();
    const auto token = std::make_shared<int>(0);
    int first = 0;
    int second = 0;
    emb::set_stdout([&first, token](const std::string&) { ++first; });
    PyObject* installed = stream();
    EXPECT_EQ(token.use_count(), 2);
    emb::set_stdout([&second](const std::string&) { ++second; });
    EXPECT_EQ(token.use_count(), 1);
    EXPECT_EQ(stream(), installed);
    write("x");
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
    emb::reset_stdout();
    EXPECT_EQ(stream(), before) << "the first saved stream, not the installed one";
}

TEST_F(Redirection, SecondInstallPutsTheInstanceBackInPlace)
{
    PyObject* before = stream();
    emb::set_stdout([](const std::string&) {});
    PyObject* installed = stream();
    PySys_SetObject("stdout", Py_None);
    emb::set_stdout([](const std::string&) {});
    EXPECT_EQ(stream(), installed);
    emb::reset_stdout();
    EXPECT_EQ(stream(), before);
}

TEST_F(Redirection, UndoingReleasesTheFunction)
{
    const auto token = std::make_shared<int>(0);
    emb::set_stdout([token](const std::string&) {});
    emb::reset_stdout();
    EXPECT_EQ(token.use_count(), 1);
}

TEST_F(Redirection, UndoingTwiceRestoresTheSavedStreamAgain)
{
    PyObject* before = stream();
    emb::set_stdout([](const std::string&) {});
    emb::reset_stdout();
    PySys_SetObject("stdout", Py_None);
    emb::reset_stdout();
    EXPECT_EQ(stream(), before);
}

TEST_F(Redirection, EmptiedFunctionsMakeWritesReturnZero)
{
    const auto token = std::make_shared<int>(0);
    emb::set_stdout([token](const std::string&) {});
    emb::clear_writers();
    EXPECT_EQ(token.use_count(), 1);
    EXPECT_EQ(write("abc"), 0);
    emb::reset_stdout();
}

TEST_F(Redirection, GivesTheStreamBackWithTheReferencesItHad)
{
    const PyRef sys = PyRef::take(PyImport_ImportModule("sys"));
    const auto count = [&sys] {
        const PyRef result = PyRef::take(PyObject_CallMethod(sys.get(), "getrefcount", "O", stream()));
        return PyLong_AsLong(result.get());
    };
    const long before = count();
    for (int i = 0; i < 10; ++i) {
        emb::set_stdout([](const std::string&) {});
        emb::set_stdout([](const std::string&) {});
        emb::reset_stdout();
        emb::reset_stdout();
    }
    EXPECT_EQ(count(), before);
}

// A host's start notification may itself run code: it stands between the listing of the names and the redirection.
TEST_F(Redirection, BeginsAfterTheStartNotificationWhoseNamesGoWithTheRun)
{
    static QStringList seen;
    seen.clear();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const QString result = plugin->runScript(
        QStringLiteral("print('of the script')"), &environment, QString(),
        [](void*, void*) {
            fx_pyapp_RunPythonString("import sys\nmade = 1\nprint('out', flush=True)\n"
                                     "print('err', file=sys.stderr, flush=True)\n");
        },
        nullptr, [](const QString& text, bool) { seen.append(text); });
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "out\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "err\n");
    EXPECT_EQ(result.toStdString(), "");
    EXPECT_EQ(seen.join(QString()).toStdString(), "of the script\n");
    EXPECT_EQ(run("print('made' in globals())").toStdString(), "");
    EXPECT_EQ(output.toStdString(), "False\n");
}

TEST(RedirectionWithoutAnInterpreter, DropsTheFunction)
{
    if (InterpreterSpy::everStarted)
        GTEST_SKIP() << "needs a process of its own";
    const auto token = std::make_shared<int>(0);
    emb::set_stdout([token](const std::string&) {});
    emb::set_stderr([token](const std::string&) {});
    emb::clear_writers();
    EXPECT_EQ(token.use_count(), 1);
}

} // namespace
