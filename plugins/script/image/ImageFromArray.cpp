// Filling an image from the array interface dictionary of NumPy and its relatives.

#include "ArrayCopy.h"
#include "ImageMethods.h"
#include "Narrowing.h"
#include "ReadableMemory.h"
#include "support/ErrorLog.h"
#include "support/PyRef.h"

#include <QtCore/QString>

#include <optional>
#include <vector>

namespace {

/// What a dictionary says about an array, in its own order of axes.
struct ArrayDescription {
    std::vector<std::int64_t> shape;
    std::vector<std::int64_t> strides; ///< empty when the array is dense
    ExImageDataType dataType = ExImageDataType::None;
    std::uint64_t address = 0;
};

// Each of these returns false with an error set.
bool readShape(PyObject* dictionary, ArrayDescription& array);
bool readType(PyObject* dictionary, ArrayDescription& array);
bool readStrides(PyObject* dictionary, ArrayDescription& array);
bool readAddress(PyObject* dictionary, ArrayDescription& array);

ImageSize sizeOf(const ArrayDescription& array);
ArrayLayout layoutOf(const ArrayDescription& array, const ImageSize& size);
void logRefusedSize(const ImageSize& size, const ArrayLayout& layout, unsigned bpc);
bool isPlausible(const ArrayExtent& extent);

} // namespace

PyObject* fx_pyimages_CreateFromArrayInterface(TxPyImage& object, PyObject* dictionary)
{
    if (!PyDict_Check(dictionary))
        return nullptr;
    ArrayDescription array;
    if (!readShape(dictionary, array) || !readType(dictionary, array) || !readStrides(dictionary, array) ||
        !readAddress(dictionary, array))
        return nullptr;

    const ImageSize size = sizeOf(array);
    ArrayLayout layout = layoutOf(array, size);
    OwnedPicBuf filled;
    filled.buffer.dataType = array.dataType;
    filled.buffer.bpc = SxPicBufInfo::bytesPerValue(array.dataType) * 8;
    filled.buffer.isColor =
        size.channels == 3 && (array.dataType == ExImageDataType::UInt8 || array.dataType == ExImageDataType::UInt16);
    if (!fx_img_allocate(filled, size)) {
        logRefusedSize(size, layout, filled.buffer.bpc);
        return fx_img_raise("Cannot allocate image");
    }
    if (!isPlausible(layout.extent))
        layout.extent = {};
    if (!copyArray(layout, filled.buffer))
        return fx_img_raise("Data in __array_interface__ lies outside readable memory");
    return fx_img_installNarrowed(object, std::move(filled));
}

namespace {

// Reading an integer of a foreign type can run any code, also such that changes the dictionary: whatever is taken from
// it is held.
PyRef entry(PyObject* dictionary, const char* key)
{
    return PyRef::retain(PyDict_GetItemString(dictionary, key));
}

template<typename Number>
bool toNumber(PyObject* object, Number (*convert)(PyObject*), Number& number)
{
    const PyRef integer = PyRef::take(PyNumber_Index(object));
    if (!integer)
        return false;
    number = convert(integer.get());
    return !(number == Number(-1) && PyErr_Occurred());
}

bool readAxes(PyObject* tuple, std::vector<std::int64_t>& axes)
{
    const Py_ssize_t count = PyTuple_Size(tuple);
    axes.resize(std::size_t(count));
    for (Py_ssize_t i = 0; i < count; ++i) {
        long long number = 0;
        if (!toNumber(PyTuple_GetItem(tuple, i), PyLong_AsLongLong, number))
            return false;
        axes[std::size_t(i)] = number;
    }
    return true;
}

bool readShape(PyObject* dictionary, ArrayDescription& array)
{
    const PyRef shape = entry(dictionary, "shape");
    if (!shape) {
        fx_img_raise("No shape provided in __array_interface__");
        return false;
    }
    if (!PyTuple_Check(shape.get())) {
        PyErr_SetString(PyExc_TypeError, "shape in __array_interface__ is not a tuple");
        return false;
    }
    return readAxes(shape.get(), array.shape);
}

// The byte order in front is not looked at: data is taken in the machine's.
std::optional<ExImageDataType> typeForCode(QChar kind, QChar size)
{
    const QString code = QString(kind) + size;
    if (code == u"u1")
        return ExImageDataType::UInt8;
    if (code == u"u2")
        return ExImageDataType::UInt16;
    if (code == u"u4")
        return ExImageDataType::UInt32;
    if (code == u"u8")
        return ExImageDataType::UInt64;
    if (code == u"i1")
        return ExImageDataType::Int8;
    if (code == u"i2")
        return ExImageDataType::Int16;
    if (code == u"i4")
        return ExImageDataType::Int32;
    if (code == u"i8")
        return ExImageDataType::Int64;
    if (code == u"f4")
        return ExImageDataType::Float;
    if (code == u"f8")
        return ExImageDataType::Double;
    return std::nullopt;
}

bool readType(PyObject* dictionary, ArrayDescription& array)
{
    const PyRef typestr = entry(dictionary, "typestr");
    if (!typestr) {
        fx_img_raise("No typestr provided in __array_interface__");
        return false;
    }
    if (!PyUnicode_Check(typestr.get())) {
        PyErr_SetString(PyExc_TypeError, "typestr in __array_interface__ is not a str");
        return false;
    }
    const PyRef utf8 = PyRef::take(PyUnicode_AsUTF8String(typestr.get()));
    if (!utf8)
        return false;
    const QString text = QString::fromUtf8(PyBytes_AsString(utf8.get()), PyBytes_Size(utf8.get()));
    if (text.size() <= 2)
        return true;
    const auto type = typeForCode(text[1], text[2]);
    if (!type) {
        fx_logError(QStringLiteral("ArrInt = unsupported data type provided: %1").arg(text));
        fx_img_raise("unsupported data type in __array_interface__");
        return false;
    }
    array.dataType = *type;
    return true;
}

bool readStrides(PyObject* dictionary, ArrayDescription& array)
{
    const PyRef strides = entry(dictionary, "strides");
    if (!strides || !PyTuple_Check(strides.get()))
        return true;
    const Py_ssize_t count = PyTuple_Size(strides.get());
    return count < 1 || count > 3 || readAxes(strides.get(), array.strides);
}

bool readAddress(PyObject* dictionary, ArrayDescription& array)
{
    const PyRef data = entry(dictionary, "data");
    if (!data) {
        fx_img_raise("No data provided in __array_interface__");
        return false;
    }
    if (!PyTuple_Check(data.get())) {
        fx_img_raise("Data in __array_interface__ not as tuple");
        return false;
    }
    if (PyTuple_Size(data.get()) == 0) {
        PyErr_SetString(PyExc_TypeError, "data in __array_interface__ is an empty tuple");
        return false;
    }
    unsigned long long address = 0;
    if (!toNumber(PyTuple_GetItem(data.get(), 0), PyLong_AsUnsignedLongLong, address))
        return false;
    if (address == 0) {
        fx_img_raise("Null data provided in __array_interface__");
        return false;
    }
    array.address = address;
    return true;
}

ImageSize sizeOf(const ArrayDescription& array)
{
    const auto& shape = array.shape;
    switch (shape.size()) {
    case 1:
        return {1, shape[0], 1};
    case 2:
        return {shape[1], shape[0], 1};
    case 3:
        return {shape[1], shape[0], shape[2]};
    default:
        return {};
    }
}

// Sizes may be anything here, so products are taken modulo 2^64: what does not fit is not allocated either.
std::int64_t product(std::int64_t a, std::int64_t b)
{
    return std::int64_t(std::uint64_t(a) * std::uint64_t(b));
}

// x has the array's first stride and y its second, although the height is the first entry of the shape.
ArrayLayout layoutOf(const ArrayDescription& array, const ImageSize& size)
{
    const std::uint32_t valueBytes = SxPicBufInfo::bytesPerValue(array.dataType);
    const auto& strides = array.strides;
    ArrayLayout layout;
    layout.address = array.address;
    layout.channelStride = valueBytes;
    layout.xStride = product(valueBytes, size.channels);
    layout.yStride = product(layout.xStride, size.width);
    if (strides.empty()) {
        const std::int64_t dense[] = {layout.yStride, layout.xStride, layout.channelStride};
        const std::int64_t shape[] = {size.height, size.width, size.channels};
        layout.extent = describedExtent(layout.address, shape, dense, valueBytes);
        return layout;
    }
    layout.extent = describedExtent(layout.address, array.shape, strides, valueBytes);
    layout.xStride = strides[0];
    layout.yStride = strides.size() == 1 ? strides[0] : strides[1];
    if (strides.size() == 1)
        layout.channelStride = strides[0];
    else if (strides.size() == 3)
        layout.channelStride = strides[2];
    return layout;
}

// An array is taken at its word, but not one that is made up: then every value is asked about.
bool isPlausible(const ArrayExtent& extent)
{
    constexpr std::uint64_t quicklyChecked = std::uint64_t(1) << 36; // 64 GB
    return extent.end - extent.begin <= quicklyChecked && memoryIsThere(extent.begin, extent.end);
}

void logRefusedSize(const ImageSize& size, const ArrayLayout& layout, unsigned bpc)
{
    fx_logError(QStringLiteral("ArrInt = cannot allocate image with dimensions: w%1 h%2 c%3 ystr%4 xstr%5 cstr%6 bpc%7")
                    .arg(size.width)
                    .arg(size.height)
                    .arg(size.channels)
                    .arg(layout.yStride)
                    .arg(layout.xStride)
                    .arg(layout.channelStride)
                    .arg(bpc));
}

} // namespace
