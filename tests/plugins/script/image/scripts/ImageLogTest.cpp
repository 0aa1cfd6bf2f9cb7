// What from_array writes to the log.

#include "support/PluginHost.h"

namespace {

QStringList records;

class ImageLog : public SharedPluginTest
{
protected:
    void SetUp() override
    {
        records.clear();
        m_previous = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
            if (type == QtCriticalMsg)
                records.append(text);
        });
    }
    void TearDown() override { qInstallMessageHandler(m_previous); }

    // Gives a dictionary to from_array; returns the one record that this leaves, in its quotes.
    QString recordFor(const char* data)
    {
        const QString script = QStringLiteral("try:\n"
                                              "    vantrel.Image().from_array(%1)\n"
                                              "except Exception as error:\n"
                                              "    print(error)\n")
                                   .arg(QString::fromLatin1(data));
        EXPECT_CLEAN_RUN(script);
        if (records.size() != 1)
            return QStringLiteral("%1 records").arg(records.size());
        return records[0].mid(records[0].indexOf(QLatin1Char('"')));
    }

private:
    QtMessageHandler m_previous = nullptr;
};

TEST_F(ImageLog, NamesATypeThatIsNotSupported)
{
    EXPECT_EQ(
        recordFor("type('A', (), {'__array_interface__': {'shape': (1, 1), 'typestr': '<f2', 'data': (1, 0)}})()"),
        QStringLiteral("\"ArrInt = unsupported data type provided: <f2\""));
    EXPECT_EQ(host.printed(), QStringLiteral("unsupported data type in __array_interface__\n"));
}

TEST_F(ImageLog, DescribesAnArrayThatCannotBeAllocated)
{
    EXPECT_EQ(
        recordFor("type('A', (), {'__array_interface__': {'shape': (0, 7, 3), 'typestr': '<u2', 'data': (1, 0)}})()"),
        QStringLiteral("\"ArrInt = cannot allocate image with dimensions: w7 h0 c3 ystr42 xstr6 cstr2 bpc16\""));
    EXPECT_EQ(host.printed(), QStringLiteral("Cannot allocate image\n"));
}

TEST_F(ImageLog, DescribesTheGivenStrides)
{
    EXPECT_EQ(
        recordFor("type('A', (), {'__array_interface__': {'shape': (5, 0), 'typestr': '<f8', 'strides': (-16, 99),"
                  " 'data': (1, 0)}})()"),
        QStringLiteral("\"ArrInt = cannot allocate image with dimensions: w0 h5 c1 ystr99 xstr-16 cstr8 bpc64\""));
}

TEST_F(ImageLog, DescribesAListThatCannotBeAllocated)
{
    // Lists that hold one and the same list again and again: 20 terabytes of values in little memory.
    EXPECT_EQ(recordFor("[[[300] * 1000000] * 1000000] * 10"),
              QStringLiteral("\"fx_pyimages_CreateFromList = cannot allocate image with dimensions: w1000000 h10 "
                             "c1000000 bpc16\""));
    EXPECT_EQ(host.printed(), QStringLiteral("Cannot allocate image\n"));
    records.clear();
    EXPECT_EQ(recordFor("[[0.5] * 1000000] * 1000000"),
              QStringLiteral("\"fx_pyimages_CreateFromList = cannot allocate image with dimensions: w1000000 "
                             "h1000000 c1 bpc32\""));
}

TEST_F(ImageLog, KeepsTheImageWhenAListCannotBeAllocated)
{
    EXPECT_CLEAN_RUN("img = vantrel.Image()\n"
                     "img.alloc(5, 3, 1, 8)\n"
                     "try:\n"
                     "    img.from_array([[[300] * 1000000] * 1000000] * 10)\n"
                     "except Exception as error:\n"
                     "    print(type(error).__name__, img.width, img.height)\n");
    EXPECT_EQ(host.printed(), QStringLiteral("Exception 5 3\n"));
}

} // namespace
