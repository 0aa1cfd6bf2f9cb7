// Running scripts.

#include "support/PluginHost.h"

namespace {

class Run : public PluginTest
{
};

TEST_F(Run, PrintsIntoTheOutputCallback)
{
    EXPECT_CLEAN_RUN("print('hello')");
    EXPECT_EQ(PluginHost::output, QStringList({QStringLiteral("hello"), QStringLiteral("\n")}));
}

TEST_F(Run, ReturnsTheTracebackOfAnUncaughtException)
{
    const QString result = host.run("def f():\n    raise ValueError('no')\nf()\n");
    EXPECT_TRUE(result.startsWith(QStringLiteral("Traceback (most recent call last):"))) << result.toStdString();
    EXPECT_TRUE(result.contains(QStringLiteral("File \"<string>\", line 2, in f"))) << result.toStdString();
    EXPECT_TRUE(result.endsWith(QStringLiteral("ValueError: no\n"))) << result.toStdString();
}

TEST_F(Run, OffersTheModuleAndTheImageType)
{
    EXPECT_CLEAN_RUN("img = vantrel.Image()\n"
                     "img.alloc(4, 2, 1, 12)\n"
                     "print(img, img.width, img.data_saturation)\n");
    EXPECT_EQ(host.printed().toStdString(), "Vantrel image, width: 4, height: 2, channels: 1, bit per channel (bpc): "
                                            "12, type: unsigned int 4 4095.0\n");
}

} // namespace
