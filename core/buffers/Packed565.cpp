#include "Packed565.h"

#include "PixelTypes.h"

void unpackComponents(const SxPicBuf& packed, SxPicBuf& components)
{
    for (std::uint32_t y = 0; y < packed.height; ++y) {
        std::uint8_t* out = components.row(y);
        for (std::size_t x = 0; x < packed.width; ++x, out += 3) {
            const Packed565 colour = Packed565::unpack(loadValue<std::uint16_t>(packed.row(y), x));
            out[0] = colour.blue;
            out[1] = colour.green;
            out[2] = colour.red;
        }
    }
}

void packComponents(const SxPicBuf& components, SxPicBuf& packed)
{
    for (std::uint32_t y = 0; y < components.height; ++y) {
        const std::uint8_t* in = components.row(y);
        for (std::size_t x = 0; x < components.width; ++x, in += 3)
            storeValue(packed.row(y), x, Packed565{in[0], in[1], in[2]}.pack());
    }
}
