#include "ImageCodecs.h"

#include "modules/ProductModule.h"

#include <atomic>

const ImageCodecs* ImageCodecs::load(QString& problem)
{
    static std::atomic<const ImageCodecs*> loaded = nullptr;
    if (!loaded) {
        using Codecs = const ImageCodecs*();
        // The number is that of the core library's SONAME.
        if (void* codecs = moduleFunction("core1/libvantrel_codecs.so", "vantrel_image_codecs", problem))
            loaded = reinterpret_cast<Codecs*>(codecs)();
    }
    return loaded;
}
