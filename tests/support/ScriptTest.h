#pragma once

#include "PluginHost.h"

#include "CxPicBufAPI.h"

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

/// An image that cannot be copied: clone() fails in one of the two ways in which a host can fail.
class UncopyableImage : public CxImageData
{
public:
    enum Failure { GivesNull, GivesAnotherObject };

    explicit UncopyableImage(Failure failure = GivesNull)
        : m_failure(failure)
    {
    }

    QObject* clone(QObject* /*parent*/, QThread* /*thread*/) override
    {
        return m_failure == GivesNull ? nullptr : new QObject;
    }

private:
    Failure m_failure;
};

/// A test with a running interpreter and helpers that read values from scripts.
template<typename Base>
class ScriptTestOn : public Base
{
protected:
    using Base::host;

    ScriptTestOn() { host.run(""); }

    // A published name would stay, and keep what later scripts bind to it.
    ~ScriptTestOn() override
    {
        for (const QString& name : std::as_const(m_published))
            host.run(QStringLiteral("globals().pop('%1', None)").arg(name));
    }

    /// The `repr` of a Python expression, or "ExceptionType: message" if the expression raises. A SystemError gives
    /// only its message, and only "SystemError" for a call that fails without an exception: that wording differs by
    /// version.
    std::string value(const std::string& expression)
    {
        const std::string script = "try:\n"
                                   "    print(repr(" +
                                   expression +
                                   "), end='')\n"
                                   "except SystemError as error:\n"
                                   "    print('SystemError' if 'NULL without setting' in str(error) else error)\n"
                                   "except BaseException as error:\n"
                                   "    print(type(error).__name__ + ': ' + str(error), end='')\n";
        const QString result = host.run(QString::fromStdString(script));
        return (host.printed().trimmed() + result).toStdString();
    }

    /// Each row: an expression, and what value() gives for it.
    void expectValues(std::initializer_list<std::pair<std::string, std::string>> rows)
    {
        for (const auto& [expression, expected] : rows)
            EXPECT_EQ(value(expression), expected) << expression;
    }

    /// Publishes an image to scripts. The test keeps owning the image and must keep it until the test ends.
    void publish(const char* name, CxImageData& image)
    {
        host.plugin->addImageVariable(QString::fromUtf8(name), &image);
        m_published.append(QString::fromUtf8(name));
    }

private:
    QStringList m_published;
};

using ScriptTest = ScriptTestOn<PluginTest>;
using SharedScriptTest = ScriptTestOn<SharedPluginTest>;

/// An image with the given record and cleared pixels, or null on failure. A line stride of 0 lets the library choose.
inline std::unique_ptr<CxImageData> makeImage(const SxPicBufInfo& info)
{
    SxPicBuf buffer;
    if (!CxPicBufAPI::AllocPicBufFromHeap(buffer, info, false, 0))
        return nullptr;
    auto image = std::make_unique<CxImageData>();
    image->setPicBuf(buffer);
    return image;
}

/// An interleaved image record of the given form. bpc is the width of the type.
inline SxPicBufInfo imageInfo(unsigned width, unsigned height, unsigned channels = 1,
                              ExImageDataType type = ExImageDataType::UInt8, unsigned lineStride = 0)
{
    SxPicBufInfo info;
    info.width = width;
    info.height = height;
    info.lineStride = lineStride;
    info.channels = channels;
    info.dataType = type;
    info.bpc = SxPicBufInfo::bytesPerValue(type) * 8;
    info.storageFormat = ExDataStorageFormat::Interleaved;
    info.isColor = channels >= 3;
    return info;
}
