// Filling an image from nested lists of numbers, in one pass. No script code runs during the pass, so the lists cannot
// change and need neither copies nor references.

#include "ImageMethods.h"
#include "support/ErrorLog.h"

#include <QtCore/QString>

#include <algorithm>
#include <cstring>

namespace {

/// The shape and type of a list, taken from its first elements. All other elements are fitted to this shape.
struct ListShape {
    ImageSize size;
    int dimensions = 1;
    bool ofIntegers = true;
};

// On failure, returns false with an error set.
bool describe(PyObject* list, ListShape& shape);

// The two kinds of elements. store() returns false, and stores nothing, if the item has another type.
struct Integers {
    using Value = std::uint16_t;
    static bool store(PyObject* item, Value& value);
};
struct Floats {
    using Value = float;
    static bool store(PyObject* item, Value& value);
};

// Values that the list lacks become 0.
template<typename Elements>
void fill(SxPicBuf& buffer, PyObject* list, int dimensions);

} // namespace

PyObject* fx_pyimages_CreateFromList(TxPyImage& object, PyObject* list)
{
    ListShape shape;
    if (!describe(list, shape))
        return nullptr;
    OwnedPicBuf filled;
    SxPicBuf& buffer = filled.buffer;
    buffer.dataType = shape.ofIntegers ? ExImageDataType::UInt16 : ExImageDataType::Float;
    buffer.bpc = shape.ofIntegers ? 16 : 32;
    if (!fx_img_allocate(filled, shape.size)) {
        fx_logError(
            QStringLiteral("fx_pyimages_CreateFromList = cannot allocate image with dimensions: w%1 h%2 c%3 bpc%4")
                .arg(shape.size.width)
                .arg(shape.size.height)
                .arg(shape.size.channels)
                .arg(buffer.bpc));
        return fx_raise("Cannot allocate image");
    }
    if (shape.ofIntegers)
        fill<Integers>(buffer, list, shape.dimensions);
    else
        fill<Floats>(buffer, list, shape.dimensions);
    return fx_img_installNarrowed(object, std::move(filled));
}

namespace {

bool describe(PyObject* list, ListShape& shape)
{
    shape.size = {1, PyList_Size(list), 1};
    if (shape.size.height == 0) {
        fx_raise("list passed is empty");
        return false;
    }
    PyObject* element = PyList_GetItem(list, 0);
    if (fx_isList(element)) {
        shape.dimensions = 2;
        shape.size.width = PyList_Size(element);
        if (shape.size.width == 0) {
            fx_raise("array rows are empty");
            return false;
        }
        element = PyList_GetItem(element, 0);
    }
    if (shape.dimensions == 2 && fx_isList(element)) {
        shape.dimensions = 3;
        shape.size.channels = PyList_Size(element);
        if (shape.size.channels == 0) {
            fx_raise("array channels are empty");
            return false;
        }
        element = PyList_GetItem(element, 0);
    }
    shape.ofIntegers = fx_isInteger(element);
    if (!shape.ofIntegers && !fx_isFloat(element)) {
        fx_raise("unsupported data type");
        return false;
    }
    return true;
}

// Keeps the low 16 bits of an integer of any size.
bool Integers::store(PyObject* item, Value& value)
{
    if (!fx_isInteger(item))
        return false;
    value = Value(PyLong_AsUnsignedLongLongMask(item));
    return true;
}

bool Floats::store(PyObject* item, Value& value)
{
    if (!fx_isFloat(item))
        return false;
    value = float(PyFloat_AsDouble(item));
    return true;
}

// The next three functions return the end of what they wrote.

// Skips elements of another type; the next element takes the free place.
template<typename Elements>
typename Elements::Value* fillRow(typename Elements::Value* to, PyObject* row, Py_ssize_t width)
{
    const Py_ssize_t count = std::min(PyList_Size(row), width);
    for (Py_ssize_t x = 0; x < count; ++x) {
        if (Elements::store(PyList_GetItem(row, x), *to))
            ++to;
    }
    return to;
}

// An element of another type leaves its channel at 0.
template<typename Elements>
typename Elements::Value* fillPixel(typename Elements::Value* to, PyObject* pixel, Py_ssize_t channels)
{
    const Py_ssize_t count = std::min(PyList_Size(pixel), channels);
    std::fill_n(to, channels, typename Elements::Value());
    for (Py_ssize_t c = 0; c < count; ++c)
        Elements::store(PyList_GetItem(pixel, c), to[c]);
    return to + channels;
}

// Skips elements that are not pixels; the next pixel takes the free place.
template<typename Elements>
typename Elements::Value* fillRowOfPixels(typename Elements::Value* to, PyObject* row, Py_ssize_t width,
                                          Py_ssize_t channels)
{
    const Py_ssize_t count = PyList_Size(row);
    const auto* const end = to + width * channels;
    for (Py_ssize_t x = 0; x < count && to != end; ++x) {
        PyObject* pixel = PyList_GetItem(row, x);
        if (fx_isList(pixel))
            to = fillPixel<Elements>(to, pixel, channels);
    }
    return to;
}

template<typename Elements>
void fill(SxPicBuf& buffer, PyObject* list, int dimensions)
{
    using Value = typename Elements::Value;
    const auto width = Py_ssize_t(buffer.width);
    const auto channels = Py_ssize_t(buffer.channels);
    for (std::uint32_t y = 0; y < buffer.height; ++y) {
        PyObject* row = PyList_GetItem(list, Py_ssize_t(y));
        auto* const start = reinterpret_cast<Value*>(buffer.row(y));
        Value* written = start;
        if (dimensions == 1) {
            written += Elements::store(row, *start);
        } else if (fx_isList(row)) {
            written = dimensions == 2 ? fillRow<Elements>(start, row, width)
                                      : fillRowOfPixels<Elements>(start, row, width, channels);
        }
        std::uint8_t* const rest = reinterpret_cast<std::uint8_t*>(written);
        std::memset(rest, 0, buffer.lineStride - std::size_t(rest - buffer.row(y)));
    }
}

} // namespace
