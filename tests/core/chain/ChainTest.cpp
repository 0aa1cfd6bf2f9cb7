// Processing chains, their manager, and the registry of stage classes.

#include "ChainFixtures.h"
#include "CxChain.h"
#include "CxChainManager.h"
#include "CxChainable.h"
#include "CxImageData.h"
#include "CxRTTI.h"

#include <gtest/gtest.h>

#include <QtCore/QPointer>

#include <memory>

namespace {

bool append(CxChain& chain, CxChainable* object)
{
    return CxChainManager::instance()->insertBefore(&chain, object, nullptr);
}

TEST(Chain, RunsAtFirstAndKnowsWhetherItIsStopped)
{
    CxChain chain;
    EXPECT_FALSE(chain.stopped());
    chain.stop();
    EXPECT_TRUE(chain.stopped());
    chain.start();
    EXPECT_FALSE(chain.stopped());
}

TEST(Chain, InsertsBeforeTheGivenObject)
{
    CxChain chain;
    auto* last = new NotingStage;
    auto* first = new NotingStage;
    auto* middle = new NotingStage;
    EXPECT_TRUE(append(chain, last));
    EXPECT_TRUE(CxChainManager::instance()->insertBefore(&chain, first, last));
    EXPECT_TRUE(CxChainManager::instance()->insertBefore(&chain, middle, last));
    EXPECT_EQ(chain.objects(), QList<CxChainable*>({first, middle, last}));
    EXPECT_EQ(middle->chain(), &chain);
}

TEST(Chain, RefusesWhatCannotBeInserted)
{
    CxChain chain;
    CxChain other;
    auto* here = new NotingStage;
    auto* there = new NotingStage;
    ASSERT_TRUE(append(chain, here));
    ASSERT_TRUE(append(other, there));
    NotingStage free;
    EXPECT_FALSE(CxChainManager::instance()->insertBefore(nullptr, &free, nullptr));
    EXPECT_FALSE(append(chain, nullptr));
    EXPECT_FALSE(append(chain, there));
    EXPECT_FALSE(append(chain, here));
    EXPECT_FALSE(CxChainManager::instance()->insertBefore(&chain, &free, there));
    EXPECT_EQ(chain.objects(), QList<CxChainable*>({here}));
    EXPECT_EQ(free.chain(), nullptr);
}

TEST(Chain, AsksItsObjectsInOrderAndSkipsThoseSwitchedOff)
{
    CxChain chain;
    QStringList asked;
    for (const char* name : {"a", "b", "c"}) {
        auto* stage = new NotingStage;
        stage->setObjectName(QString::fromLatin1(name));
        stage->onProcess = [&asked, stage] { asked.append(stage->objectName()); };
        append(chain, stage);
    }
    chain.objects().at(1)->setEnabled(false);
    CxImageData image;
    chain.process(image);
    EXPECT_EQ(asked, QStringList({QStringLiteral("a"), QStringLiteral("c")}));
}

TEST(Chain, LetsImagesPassWhileItIsStopped)
{
    CxChain chain;
    int asked = 0;
    auto* stage = new NotingStage;
    stage->onProcess = [&asked] { ++asked; };
    append(chain, stage);
    CxImageData image;
    chain.stop();
    chain.process(image);
    EXPECT_EQ(asked, 0);
    chain.start();
    chain.process(image);
    EXPECT_EQ(asked, 1);
}

TEST(Chain, TellsWhenImagesComeOutDifferently)
{
    CxChain chain;
    int changes = 0;
    QObject::connect(&chain, &CxChain::changed, [&changes] { ++changes; });
    auto* stage = new NotingStage;
    append(chain, stage);
    EXPECT_EQ(changes, 1);
    stage->setEnabled(true); // it is already
    EXPECT_EQ(changes, 1);
    stage->setEnabled(false);
    EXPECT_EQ(changes, 2);
    chain.stop();
    chain.stop();
    EXPECT_EQ(changes, 3);
    chain.start();
    EXPECT_EQ(changes, 4);
    delete stage;
    EXPECT_EQ(changes, 5);
}

TEST(Chain, DeletesItsObjectsAndForgetsThoseDeletedEarlier)
{
    auto chain = std::make_unique<CxChain>();
    auto* early = new NotingStage;
    QPointer<NotingStage> late = new NotingStage;
    append(*chain, early);
    append(*chain, late);
    delete early;
    EXPECT_EQ(chain->objects(), QList<CxChainable*>({late}));
    chain.reset();
    EXPECT_TRUE(late.isNull());
}

TEST(ClassRegistry, KnowsTheStagesUnderTheNamesOfTheUser)
{
    QStringList names;
    for (const QString& className : CxRTTI::instance()->classesForInterface(QStringLiteral("CxChainable"), true))
        names.append(CxRTTI::instance()->customNameForClass(className));
    EXPECT_EQ(names, QStringList({QStringLiteral("Gain"), QStringLiteral("Invert"), QStringLiteral("Flip"),
                                  QStringLiteral("Gaussian Blur"), QStringLiteral("Threshold")}));
}

TEST(ClassRegistry, MakesInstances)
{
    const std::unique_ptr<QObject> object(CxRTTI::instance()->createInstanceOfClass(QStringLiteral("InvertStage")));
    EXPECT_NE(qobject_cast<CxChainable*>(object.get()), nullptr);
    EXPECT_EQ(CxRTTI::instance()->createInstanceOfClass(QStringLiteral("NoSuchClass")), nullptr);
    EXPECT_EQ(CxRTTI::instance()->customNameForClass(QStringLiteral("NoSuchClass")), QString());
    EXPECT_TRUE(CxRTTI::instance()->classesForInterface(QStringLiteral("NoSuchInterface"), false).isEmpty());
}

TEST(ClassRegistry, LeavesOutClassesWithoutAFactoryOnRequest)
{
    CxRTTI& registry = *CxRTTI::instance();
    const QString name = QStringLiteral("NotingStage");
    const QString interface = QStringLiteral("CxChainable");
    registry.registerClass(NotingStage::staticMetaObject, QString(), nullptr);
    EXPECT_TRUE(registry.classesForInterface(interface, false).contains(name));
    EXPECT_FALSE(registry.classesForInterface(interface, true).contains(name));
    EXPECT_EQ(registry.customNameForClass(name), name);
    EXPECT_EQ(registry.createInstanceOfClass(name), nullptr);
    registry.unregisterClass(NotingStage::staticMetaObject);
    EXPECT_FALSE(registry.classesForInterface(interface, false).contains(name));
}

} // namespace
