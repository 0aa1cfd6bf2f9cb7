#include "TakeAs.h"

#include "CxImageData.h"

#include <QtCore/QPointer>
#include <QtCore/QTimer>

#include <gtest/gtest.h>

namespace {

/// An interface that is no QObject itself.
class Sound
{
public:
    virtual ~Sound() = default;
    virtual int pitch() const = 0;
};

} // namespace

Q_DECLARE_INTERFACE(Sound, "vantrel.tests.Sound")

namespace {

class Bell : public QObject, public Sound
{
    Q_OBJECT
    Q_INTERFACES(Sound)
public:
    int pitch() const override { return 440; }
};

TEST(TakeAs, GivesAnObjectOfItsClass)
{
    CxImageData image;
    QObject* copy = image.clone(nullptr, nullptr);
    const std::unique_ptr<CxImageData> taken = takeAs<CxImageData>(copy);
    EXPECT_EQ(taken.get(), copy);
}

TEST(TakeAs, GivesAnObjectByItsInterface)
{
    const QPointer<QObject> object = new Bell;
    {
        const std::unique_ptr<Sound> taken = takeAs<Sound>(object);
        ASSERT_NE(taken, nullptr);
        EXPECT_EQ(taken->pitch(), 440);
        EXPECT_FALSE(object.isNull());
    }
    EXPECT_TRUE(object.isNull());
}

TEST(TakeAs, DeletesAnObjectOfAnotherClass)
{
    const QPointer<QObject> object = new QTimer;
    EXPECT_EQ(takeAs<CxImageData>(object), nullptr);
    EXPECT_TRUE(object.isNull());
}

TEST(TakeAs, NullStaysNull)
{
    EXPECT_EQ(takeAs<CxImageData>(nullptr), nullptr);
}

} // namespace

#include "TakeAsTest.moc"
