#include "CxCameraParameters.h"

#include "support/FakeCameraDevice.h"
#include "support/FileSizeLimit.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

QStringList logLines;

void collect(QtMsgType, const QMessageLogContext&, const QString& line)
{
    logLines.append(line);
}

class CameraSettings : public testing::Test
{
protected:
    CameraSettings()
    {
        logLines.clear();
        qInstallMessageHandler(collect);
        change();
    }

    ~CameraSettings() override { qInstallMessageHandler(nullptr); }

    /// Away from every default, so that a change shows.
    void change()
    {
        set("exposure", CxValue::fromInt(4321));
        set("gain", CxValue::fromFloat(0.3F));
        set("auto_exposure", CxValue::fromBool(true));
        set("trigger_mode", CxValue::fromString(QStringLiteral("software")));
        store->setROIRectParams(16, 8, 320, 240, true, true);
    }

    void set(const char* name, const CxValue& value)
    {
        store->setParamDirect(QString::fromUtf8(name), value, nullptr, ExCommitRefreshGuiMode::Commit);
    }

    static CxValue get(const CxCameraParameters& from, const char* name)
    {
        return from.findParam(QString::fromUtf8(name), false)->paramValue();
    }

    QString file(const QByteArray& content)
    {
        QFile out(path);
        EXPECT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(content);
        return path;
    }

    bool load(QStringList* failed = nullptr)
    {
        return store->loadParamValuesFromFile(path, CxCameraParam::All, failed, true);
    }

    void expectUnchanged(const std::string& what)
    {
        EXPECT_EQ(get(*store, "exposure"), CxValue::fromInt(4321)) << what;
        EXPECT_EQ(get(*store, "gain"), CxValue::fromFloat(0.3F)) << what;
        EXPECT_EQ(store->currentROIRectParams().constFirst(), QRect(16, 8, 320, 240)) << what;
    }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("settings.json"));
    FakeCameraDevice device;
    std::unique_ptr<CxCameraParameters> store = makeFakeParameters(&device);
};

TEST_F(CameraSettings, ComeBackInAnotherStore)
{
    ASSERT_TRUE(store->saveParamValuesToFile(path, CxCameraParam::All));
    FakeCameraDevice otherDevice;
    const auto other = makeFakeParameters(&otherDevice);
    QStringList failed;
    ASSERT_TRUE(other->loadParamValuesFromFile(path, CxCameraParam::All, &failed, true));
    EXPECT_TRUE(failed.isEmpty()) << failed.join(u' ').toStdString();
    for (const char* name : {"exposure", "gain", "auto_exposure", "trigger_mode"})
        EXPECT_EQ(get(*other, name), get(*store, name)) << name;
    EXPECT_EQ(other->currentROIRectParams(), store->currentROIRectParams());
    EXPECT_EQ(otherDevice.written.size(), 4);
    EXPECT_EQ(otherDevice.regions.size(), 1);
    EXPECT_TRUE(logLines.isEmpty());
}

TEST_F(CameraSettings, HoldTheWritableParametersInReadableForm)
{
    ASSERT_TRUE(store->saveParamValuesToFile(path, CxCameraParam::All));
    QFile in(path);
    ASSERT_TRUE(in.open(QIODevice::ReadOnly));
    const QByteArray text = in.readAll();
    const QJsonObject parameters = QJsonDocument::fromJson(text).object()[QStringLiteral("parameters")].toObject();
    EXPECT_EQ(parameters.keys(), (QStringList{QStringLiteral("auto_exposure"), QStringLiteral("exposure"),
                                              QStringLiteral("gain"), QStringLiteral("trigger_mode")}));
    EXPECT_TRUE(text.contains("\"gain\": 0.3,")) << text.toStdString();
}

TEST_F(CameraSettings, LeaveOutWhatIsAboveTheVisibilityClass)
{
    ASSERT_TRUE(store->saveParamValuesToFile(path, CxCameraParam::Basic));
    set("gain", CxValue::fromFloat(5.0F));
    set("exposure", CxValue::fromInt(99));
    QStringList failed;
    ASSERT_TRUE(load(&failed));
    EXPECT_EQ(get(*store, "gain"), CxValue::fromFloat(5.0F));
    EXPECT_EQ(get(*store, "exposure"), CxValue::fromInt(4321));
    EXPECT_TRUE(failed.isEmpty());
}

TEST_F(CameraSettings, WithoutCommitDoNotReachTheDevice)
{
    ASSERT_TRUE(store->saveParamValuesToFile(path, CxCameraParam::All));
    set("exposure", CxValue::fromInt(99));
    device.written.clear();
    ASSERT_TRUE(store->loadParamValuesFromFile(path, CxCameraParam::All, nullptr, false));
    EXPECT_EQ(get(*store, "exposure"), CxValue::fromInt(4321));
    EXPECT_TRUE(device.written.isEmpty());
}

TEST_F(CameraSettings, ThatFitOnlyPartlyNameTheRest)
{
    file(R"({"format": "vantrel camera settings", "version": 1, "parameters": {"exposure": 77, "gain": "loud",
             "trigger_mode": "line9", "frame_count": 5, "cooling": true, "zoom": 2, "auto_exposure": null}})");
    QStringList failed;
    EXPECT_TRUE(load(&failed));
    failed.sort();
    EXPECT_EQ(failed.join(u' '), QStringLiteral("auto_exposure cooling frame_count gain trigger_mode zoom"));
    EXPECT_EQ(get(*store, "exposure"), CxValue::fromInt(77));
    EXPECT_EQ(get(*store, "gain"), CxValue::fromFloat(0.3F));
    EXPECT_EQ(get(*store, "frame_count"), CxValue::fromInt(0));
}

TEST_F(CameraSettings, OutOfRangeAreClipped)
{
    file(R"({"format": "vantrel camera settings", "version": 1, "parameters": {"exposure": 1e300, "gain": -7},
             "region": [600, 0, 100, 100]})");
    EXPECT_TRUE(load());
    EXPECT_EQ(get(*store, "exposure"), CxValue::fromInt(1000000));
    EXPECT_EQ(get(*store, "gain"), CxValue::fromFloat(0.0F));
    EXPECT_EQ(store->currentROIRectParams().constFirst(), QRect(600, 0, 40, 100));
    file(R"({"format": "vantrel camera settings", "version": 1, "parameters": {},
             "region": [600, 0, 2147483647, 2147483647]})");
    EXPECT_TRUE(load());
    EXPECT_EQ(store->currentROIRectParams().constFirst(), QRect(600, 0, 40, 480));
}

TEST_F(CameraSettings, FromABadFileChangeNothingAndLogOneLine)
{
    ASSERT_TRUE(store->saveParamValuesToFile(path, CxCameraParam::All));
    QFile in(path);
    ASSERT_TRUE(in.open(QIODevice::ReadOnly));
    const QByteArray good = in.readAll();
    in.close();

    const QByteArray head = R"({"format": "vantrel camera settings", "version": 1, )";
    const QList<QByteArray> bad = {
        QByteArray(),
        good.left(good.size() / 2),
        "exposure=5\n",
        QByteArray(1000, '\0'),
        "\x89PNG\r\n\x1a\n",
        "[1, 2, 3]",
        "{}",
        R"({"parameters": {"exposure": 5}})",
        R"({"format": "vantrel camera settings", "version": 2, "parameters": {"exposure": 5}})",
        head + R"("parameters": [5]})",
        head + R"("parameters": {"exposure": 5}, "region": [1, 2]})",
        head + R"("parameters": {"exposure": 5}, "region": "all"})",
        head + R"("parameters": {"exposure": 5}, "region": [0, 0, 1e12, "x"]})",
        QByteArray(100000, '['),
        good + QByteArray(2 << 20, ' '),
    };
    for (const QByteArray& content : bad) {
        logLines.clear();
        file(content);
        EXPECT_FALSE(load()) << content.left(200).toStdString();
        EXPECT_EQ(logLines.size(), 1) << content.left(200).toStdString();
        expectUnchanged(content.left(200).toStdString());
    }
}

TEST_F(CameraSettings, FromNoFileChangeNothingAndLogOneLine)
{
    const QByteArray pipe = folder.filePath(QStringLiteral("pipe")).toLocal8Bit();
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    for (const QString& name : {folder.filePath(QStringLiteral("missing.json")), folder.path(), QString(),
                                QStringLiteral("/dev/zero"), QString::fromLocal8Bit(pipe)}) {
        logLines.clear();
        EXPECT_FALSE(store->loadParamValuesFromFile(name, CxCameraParam::All, nullptr, true)) << name.toStdString();
        EXPECT_EQ(logLines.size(), 1) << name.toStdString();
        expectUnchanged(name.toStdString());
    }
}

TEST_F(CameraSettings, ThatCannotBeWrittenLeaveWhatIsThereAndLogOneLine)
{
    const QByteArray pipe = folder.filePath(QStringLiteral("pipe")).toLocal8Bit();
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    for (const QString& name : {folder.filePath(QStringLiteral("no/such/folder.json")), folder.path(), QString(),
                                QString::fromLocal8Bit(pipe)}) {
        logLines.clear();
        EXPECT_FALSE(store->saveParamValuesToFile(name, CxCameraParam::All)) << name.toStdString();
        EXPECT_EQ(logLines.size(), 1) << name.toStdString();
    }
    struct stat status = {};
    ASSERT_EQ(stat(pipe.constData(), &status), 0);
    EXPECT_TRUE(S_ISFIFO(status.st_mode));
}

TEST_F(CameraSettings, ThatDoNotFitOnTheDiskLeaveTheOldFile)
{
    file("old");
    {
        const FileSizeLimit limit(100);
        EXPECT_FALSE(store->saveParamValuesToFile(path, CxCameraParam::All));
    }
    ASSERT_EQ(logLines.size(), 1);
    EXPECT_TRUE(logLines[0].endsWith(QStringLiteral(": it would be larger than files may be")))
        << logLines[0].toStdString();
    QFile old(path);
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    EXPECT_EQ(old.readAll(), "old");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

} // namespace
