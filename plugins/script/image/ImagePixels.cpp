// Reading and writing single pixels, and drawing lines and outlines.

#include "ImageMethods.h"
#include "LineDrawing.h"

namespace {

// False with an error set if the position is out of range.
bool isInRange(int position, std::uint32_t limit, const char* complaint)
{
    if (position >= 0 && std::uint32_t(position) < limit)
        return true;
    fx_raise(complaint);
    return false;
}

bool channelExists(const SxPicBuf& buffer, int channel)
{
    return isInRange(channel, buffer.channels, "channel number out of range");
}

bool pixelExists(const SxPicBuf& buffer, int x, int y, int channel)
{
    return isInRange(x, buffer.width, "x-coordinate out of range") &&
           isInRange(y, buffer.height, "y-coordinate out of range") && channelExists(buffer, channel);
}

/// Whether the buffer has pixels. The host's operations check this themselves; the functions here need this check.
bool hasMemory(const SxPicBuf& buffer)
{
    return buffer.data != nullptr;
}

/// The arguments of both drawing methods.
struct Drawing {
    long long value = 0;
    int x1 = 0;
    int y1 = 0;
    int x2 = 0;
    int y2 = 0;
    int channel = 0;
};

// Returns the buffer to draw on, or null if an argument is wrong or there are no pixels.
SxPicBuf* parseDrawing(PyObject* self, PyObject* args, Drawing& drawing)
{
    if (!PyArg_ParseTuple(args, "Liiii|i", &drawing.value, &drawing.x1, &drawing.y1, &drawing.x2, &drawing.y2,
                          &drawing.channel))
        return nullptr;
    SxPicBuf* buffer = fx_img_buffer(self);
    if (!buffer)
        return nullptr;
    const bool inside = isInRange(drawing.x1, buffer->width, "x1-coordinate out of range") &&
                        isInRange(drawing.y1, buffer->height, "y1-coordinate out of range") &&
                        isInRange(drawing.x2, buffer->width, "x2-coordinate out of range") &&
                        isInRange(drawing.y2, buffer->height, "y2-coordinate out of range") &&
                        channelExists(*buffer, drawing.channel);
    return inside && hasMemory(*buffer) ? buffer : nullptr;
}

} // namespace

PyObject* fx_pyimg_GetPixelValue(PyObject* self, PyObject* args)
{
    int x = 0;
    int y = 0;
    int channel = 0;
    if (!PyArg_ParseTuple(args, "ii|i", &x, &y, &channel))
        return nullptr;
    const SxPicBuf* buffer = fx_img_buffer(self);
    if (!buffer || !pixelExists(*buffer, x, y, channel) || !hasMemory(*buffer))
        return nullptr;
    return PyLong_FromLongLong(fx_getPicPixelValue(*buffer, x, y, channel));
}

PyObject* fx_pyimg_SetPixelValue(PyObject* self, PyObject* args)
{
    long long value = 0;
    int x = 0;
    int y = 0;
    int channel = 0;
    if (!PyArg_ParseTuple(args, "Lii|i", &value, &x, &y, &channel))
        return nullptr;
    SxPicBuf* buffer = fx_img_buffer(self);
    if (!buffer || !pixelExists(*buffer, x, y, channel) || !hasMemory(*buffer))
        return nullptr;
    fx_setPicPixelValue(*buffer, x, y, channel, value);
    return fx_none();
}

PyObject* fx_pyimg_DrawPixelLine(PyObject* self, PyObject* args)
{
    Drawing line;
    SxPicBuf* buffer = parseDrawing(self, args, line);
    if (!buffer)
        return nullptr;
    fx_drawPicPixelLine(*buffer, line.x1, line.y1, line.x2, line.y2, line.channel, line.value);
    return fx_none();
}

PyObject* fx_pyimg_DrawPixelRect(PyObject* self, PyObject* args)
{
    Drawing rect;
    SxPicBuf* buffer = parseDrawing(self, args, rect);
    if (!buffer)
        return nullptr;
    const auto draw = [&](int x1, int y1, int x2, int y2) {
        fx_drawPicPixelLine(*buffer, x1, y1, x2, y2, rect.channel, rect.value);
    };
    draw(rect.x1, rect.y1, rect.x2, rect.y1);
    draw(rect.x1, rect.y2, rect.x2, rect.y2);
    draw(rect.x1, rect.y1, rect.x1, rect.y2);
    draw(rect.x2, rect.y1, rect.x2, rect.y2);
    return fx_none();
}
