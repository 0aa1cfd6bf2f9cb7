// The plugin object as Qt and the host see it.

#include "support/LogCapture.h"
#include "support/PluginHost.h"
#include "support/TestSettings.h"

#include <QtCore/QJsonObject>
#include <QtCore/QLibrary>
#include <QtCore/QPointer>

#include <memory>

namespace {

class PluginObject : public testing::Test
{
protected:
    PluginObject() { object.reset(loader.instance()); }

    QPluginLoader loader{TestSettings::pluginFile};
    std::unique_ptr<QObject> object;
};

TEST_F(PluginObject, IsDescribedByItsMetadataWithoutAJsonFile)
{
    const QJsonObject data = loader.metaData();
    EXPECT_EQ(data.value(QStringLiteral("IID")).toString().toStdString(), "com.tesmo.Vantrel.CxPythonScriptPlugin");
    EXPECT_EQ(data.value(QStringLiteral("className")).toString().toStdString(), "CxPythonScriptPlugin");
    EXPECT_TRUE(data.value(QStringLiteral("MetaData")).toObject().isEmpty());
    EXPECT_EQ(data.value(QStringLiteral("version")).toInt() & 0xffff00, QT_VERSION & 0xffff00);
}

TEST_F(PluginObject, IsFoundByItsInterface)
{
    ASSERT_TRUE(object) << loader.errorString().toStdString();
    EXPECT_TRUE(qobject_cast<CxScriptLangInterface*>(object.get()));
    EXPECT_EQ(object->parent(), nullptr);
}

TEST_F(PluginObject, CastsToTheSameInterfaceByClassNameAndByIdentifier)
{
    void* byName = object->qt_metacast("CxScriptLangInterface");
    void* byId = object->qt_metacast("com.tesmo.CxScriptLangInterface");
    EXPECT_NE(byName, nullptr);
    EXPECT_EQ(byName, byId);
    EXPECT_EQ(byName, qobject_cast<CxScriptLangInterface*>(object.get()));
    EXPECT_NE(byName, static_cast<void*>(object.get())) << "the interface is the second base";
}

TEST_F(PluginObject, CastsToItselfByItsOwnName)
{
    EXPECT_EQ(object->qt_metacast("CxPythonScriptPlugin"), static_cast<void*>(object.get()));
    EXPECT_EQ(object->qt_metacast("QObject"), static_cast<void*>(object.get()));
}

TEST_F(PluginObject, CastsToNothingByNullAndUnknownNames)
{
    EXPECT_EQ(object->qt_metacast(nullptr), nullptr);
    EXPECT_EQ(object->qt_metacast("com.tesmo.Other"), nullptr);
    EXPECT_EQ(object->qt_metacast(""), nullptr);
}

TEST_F(PluginObject, DeclaresNothingBesidesItsClass)
{
    const QMetaObject* meta = object->metaObject();
    EXPECT_STREQ(meta->className(), "CxPythonScriptPlugin");
    EXPECT_EQ(meta->superClass(), &QObject::staticMetaObject);
    EXPECT_EQ(meta->methodCount(), meta->methodOffset());
    EXPECT_EQ(meta->propertyCount(), meta->propertyOffset());
    EXPECT_EQ(meta->enumeratorCount(), meta->enumeratorOffset());
    EXPECT_EQ(meta->classInfoCount(), meta->classInfoOffset());
    EXPECT_EQ(meta->constructorCount(), 0);
}

TEST_F(PluginObject, IsMadeOnceAndAgainOnlyAfterTheHostDeletedIt)
{
    using Entry = QObject* (*)();
    const auto entry = reinterpret_cast<Entry>(QLibrary(TestSettings::pluginFile).resolve("qt_plugin_instance"));
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry(), object.get());
    EXPECT_EQ(entry(), entry());

    QPointer<QObject> old(object.release());
    delete old.data();
    ASSERT_TRUE(old.isNull());
    object.reset(entry());
    EXPECT_TRUE(qobject_cast<CxScriptLangInterface*>(object.get()));
    EXPECT_EQ(entry(), object.get());
}

TEST_F(PluginObject, InitIsAlwaysTrue)
{
    auto* plugin = qobject_cast<CxScriptLangInterface*>(object.get());
    EXPECT_TRUE(plugin->init());
    EXPECT_TRUE(plugin->init());
}

TEST_F(PluginObject, TellsTheLanguageVersionBeforeTheInterpreterStarts)
{
    auto* plugin = qobject_cast<CxScriptLangInterface*>(object.get());
    const QString version = plugin->languageVersion();
    EXPECT_TRUE(version.startsWith(QStringLiteral("Python ") + TestSettings::pythonVersion + u'.'))
        << version.toStdString();
    EXPECT_EQ(version.count(u' '), 1) << version.toStdString();
}

TEST_F(PluginObject, TellsTheSameLanguageVersionAfterARun)
{
    object.reset();
    PluginHost host;
    const QString before = host.plugin->languageVersion();
    EXPECT_EQ(host.run("import sys\nprint('Python ' + sys.version.split(' ')[0], end='')").toStdString(), "");
    EXPECT_EQ(host.printed(), before);
    EXPECT_EQ(host.plugin->languageVersion(), before);
}

TEST_F(PluginObject, MayBeDestroyedWithoutHavingRunAScript)
{
    const LogCapture log;
    qobject_cast<CxScriptLangInterface*>(object.get())->init();
    object.reset();
    EXPECT_EQ(log.records().size(), 0);
}

} // namespace
