// The store of shared values under threads.

#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "OnThreads.h"
#include "app/GlobalVariables.h"
#include "support/SleepingThread.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

std::unique_ptr<CxImageData> makeImage(std::uint8_t value)
{
    SxPicBuf buffer;
    CxPicBufAPI::AllocPicBufFromHeap(buffer, 8, 8, 1, ExImageDataType::UInt8, 0, 0, 8, ExDataStorageFormat::Interleaved,
                                     ExColorFilterArray::None, false, true, 0);
    std::fill_n(buffer.data, buffer.dataSize(), value);
    auto image = std::make_unique<CxImageData>();
    image->setPicBuf(buffer);
    return image;
}

/// A thread that sets an integer.
class Writer
{
public:
    explicit Writer(const QString& name)
        : m_thread([this, name] {
            m_number = threadNumber();
            fx_vars_setInt(name, 1);
            m_done = true;
        })
    {
    }
    ~Writer() { m_thread.join(); }
    Q_DISABLE_COPY_MOVE(Writer)

    /// Waits until the value is set or the thread sleeps before it.
    bool isHeldBack() const
    {
        while (!m_done && !(m_number && threadSleeps(getpid(), m_number)))
            std::this_thread::yield();
        return !m_done;
    }

private:
    std::atomic<int> m_number = 0;
    std::atomic<bool> m_done = false;
    std::thread m_thread;
};

TEST(GlobalVariableStore, StandsTwoThreadsThatHammerAllSixFunctions)
{
    constexpr int rounds = 2000;
    const int before = CxImageData::liveCount();
    std::atomic<int> torn = 0;
    onThreads(2, [&torn](int number) {
        const QString shared = QStringLiteral("shared");
        const QString own = QStringLiteral("own %1").arg(number);
        const std::unique_ptr<CxImageData> image = makeImage(std::uint8_t(number));
        for (int i = 0; i < rounds; ++i) {
            for (const QString& name : {shared, own}) {
                fx_vars_setImage(name, image.get());
                fx_vars_setInt(name, i);
                fx_vars_setString(name, QString::number(i));
                fx_vars_readImage(name, [&torn](CxImageData* stored) {
                    const SxPicBuf& buffer = *stored->picBuf();
                    torn += buffer.row(0)[0] != buffer.row(7)[7];
                });
                fx_vars_readInt(name, [&torn](int value) { torn += value < 0; });
                fx_vars_readString(name, [&torn](const QString& value) { torn += value.isEmpty(); });
            }
            fx_vars_readInt(own, [&torn, i](int value) { torn += value != i; });
        }
    });
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(CxImageData::liveCount(), before + 3); // one for each name

    for (const QString& name : {QStringLiteral("shared"), QStringLiteral("own 0"), QStringLiteral("own 1")})
        fx_vars_setImage(name, nullptr);
    EXPECT_EQ(CxImageData::liveCount(), before);
}

TEST(GlobalVariableStore, HoldsEveryWriterBackWhileAReaderUsesAValue)
{
    const QString name = QStringLiteral("locked");
    fx_vars_setImage(name, makeImage(1).get());
    // An integer, whatever the reader reads: the lock is one for all.
    std::unique_ptr<Writer> writer;
    const auto startWriter = [&] {
        writer = std::make_unique<Writer>(name);
        EXPECT_TRUE(writer->isHeldBack());
    };
    fx_vars_readImage(name, [&](CxImageData*) { startWriter(); });
    writer.reset();
    fx_vars_readInt(name, [&](int) { startWriter(); });
    writer.reset();
    fx_vars_readString(name, [&](const QString&) { startWriter(); });
    writer.reset();
    fx_vars_setImage(name, nullptr);
}

TEST(GlobalVariableStore, GivesBackTheVeryImageThatIsSetAgain)
{
    const QString name = QStringLiteral("identity");
    fx_vars_setImage(name, makeImage(1).get());
    CxImageData* stored = nullptr;
    fx_vars_readImage(name, [&stored](CxImageData* image) { stored = image; });
    fx_vars_setImage(name, stored);
    fx_vars_readImage(name, [stored](CxImageData* image) { EXPECT_EQ(image, stored); });
    fx_vars_setImage(name, nullptr);
    fx_vars_readImage(name, [](CxImageData* image) { EXPECT_EQ(image, nullptr); });
}

} // namespace
