// Random input for a few seconds; for a longer run see the environment variables.
//
// VANTREL_FUZZ_SECONDS  how long (3)
// VANTREL_FUZZ_SEED     start of the random numbers (1); 0 takes the time of day

#include "support/PluginHost.h"

#include <QtCore/QDateTime>

#include <iostream>

namespace {

qlonglong setting(const char* name, qlonglong usual)
{
    bool isNumber = false;
    const qlonglong value = qEnvironmentVariable(name).toLongLong(&isNumber);
    return isNumber ? value : usual;
}

class ImageFuzz : public SharedPluginTest
{
};

TEST_F(ImageFuzz, SurvivesRandomInput)
{
    qlonglong seed = setting("VANTREL_FUZZ_SEED", 1);
    if (seed == 0)
        seed = QDateTime::currentMSecsSinceEpoch();
    const QString script = QStringLiteral("import sys\n"
                                          "sys.dont_write_bytecode = True\n"
                                          "sys.path.insert(0, r'%1')\n"
                                          "import image_fuzz\n"
                                          "image_fuzz.fuzz(%2, %3)\n")
                               .arg(QStringLiteral(VANTREL_FUZZ_SCRIPTS),
                                    QString::number(setting("VANTREL_FUZZ_SECONDS", 3)), QString::number(seed));
    // Printed at once: what a crash leaves behind must name the seed.
    PluginHost::onOutput = [](const QString& text, bool) { std::cout << text.toStdString() << std::flush; };
    // Every refused input is logged; here nobody reads it.
    const auto handler = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    EXPECT_CLEAN_RUN(script);
    qInstallMessageHandler(handler);
    PluginHost::onOutput = nullptr;
}

} // namespace
