// Filling an image from an array interface dictionary, as NumPy and similar libraries provide.

#include "ArrayCopy.h"
#include "ImageMethods.h"
#include "ReadableMemory.h"
#include "support/ErrorLog.h"
#include "support/PyRef.h"

#include <QtCore/QString>

#include <optional>
#include <utility>
#include <vector>

namespace {

/// What a dictionary says about an array. Shape and strides keep the order of the array's axes.
struct ArrayDescription {
    std::vector<std::int64_t> shape;
    std::vector<std::int64_t> strides; ///< empty when the array is dense
    ExImageDataType dataType = ExImageDataType::None;
    std::uint64_t address = 0;
};

// On failure, each of these functions returns false with an error set.
bool readShape(PyObject* dictionary, ArrayDescription& array);
bool readType(PyObject* dictionary, ArrayDescription& array);
bool readStrides(PyObject* dictionary, ArrayDescription& array);
bool readAddress(PyObject* dictionary, ArrayDescription& array);

ImageSize sizeOf(const ArrayDescription& array);
ArrayLayout layoutOf(const ArrayDescription& array, const ImageSize& size);
void logRefusedSize(const ImageSize& size, const ArrayLayout& layout, unsigned bpc);
bool isPlausible(const ArrayExtent& extent);

} // namespace

PyObject* fx_pyimg_FromArray(PyObject* self, PyObject* object)
{
    if (!object)
        return nullptr;
    const PyRef arrayInterface = PyRef::take(PyObject_GetAttrString(object, "__array_interface__"));
    if (arrayInterface)
        return fx_pyimages_CreateFromArrayInterface(fx_record<TxPyImage>(self), arrayInterface.get());
    // Any Exception from the look-up means that the object has no array interface. Other errors, for example an
    // interrupt, end the script.
    if (!PyErr_ExceptionMatches(PyExc_Exception))
        return nullptr;
    PyErr_Clear();
    if (fx_isList(object))
        return fx_pyimages_CreateFromList(fx_record<TxPyImage>(self), object);
    return fx_raise("object passed doesn't support neither buffer protocol, nor __array_interface__, and is not list.");
}

PyObject* fx_pyimages_CreateFromArrayInterface(TxPyImage& object, PyObject* dictionary)
{
    if (!fx_isDict(dictionary))
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
    if (!fx_img_allocate(filled, size)) {
        logRefusedSize(size, layout, filled.buffer.bpc);
        return fx_raise("Cannot allocate image");
    }
    if (!isPlausible(layout.extent))
        layout.extent = {};
    // Values that are narrowed are read where they are: a copy in the wide type would be read once and thrown away.
    if (arrayInPlace(layout, filled.buffer))
        return fx_img_installNarrowed(object, std::move(filled), &layout);
    if (!copyArray(layout, filled.buffer))
        return fx_raise("Data in __array_interface__ lies outside readable memory");
    return fx_img_installNarrowed(object, std::move(filled));
}

namespace {

// Converting an object to an integer can run any code, even code that changes the dictionary. So each entry is held by
// a reference.
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
        fx_raise("No shape provided in __array_interface__");
        return false;
    }
    if (!fx_isTuple(shape.get())) {
        PyErr_SetString(PyExc_TypeError, "shape in __array_interface__ is not a tuple");
        return false;
    }
    return readAxes(shape.get(), array.shape);
}

/// The data type for the two characters after the byte order, such as "u2". Data is read in the machine's byte order.
std::optional<ExImageDataType> typeForCode(QStringView code)
{
    static constexpr std::pair<QStringView, ExImageDataType> types[] = {
        {u"u1", ExImageDataType::UInt8},  {u"u2", ExImageDataType::UInt16}, {u"u4", ExImageDataType::UInt32},
        {u"u8", ExImageDataType::UInt64}, {u"i1", ExImageDataType::Int8},   {u"i2", ExImageDataType::Int16},
        {u"i4", ExImageDataType::Int32},  {u"i8", ExImageDataType::Int64},  {u"f4", ExImageDataType::Float},
        {u"f8", ExImageDataType::Double},
    };
    for (const auto& [known, type] : types)
        if (known == code)
            return type;
    return std::nullopt;
}

bool readType(PyObject* dictionary, ArrayDescription& array)
{
    const PyRef typestr = entry(dictionary, "typestr");
    if (!typestr) {
        fx_raise("No typestr provided in __array_interface__");
        return false;
    }
    if (!fx_isText(typestr.get())) {
        PyErr_SetString(PyExc_TypeError, "typestr in __array_interface__ is not a str");
        return false;
    }
    const PyRef utf8 = PyRef::take(PyUnicode_AsUTF8String(typestr.get()));
    if (!utf8)
        return false;
    const QString text = QString::fromUtf8(PyBytes_AsString(utf8.get()), PyBytes_Size(utf8.get()));
    if (text.size() <= 2)
        return true;
    const auto type = typeForCode(QStringView(text).mid(1, 2));
    if (!type) {
        fx_logError(QStringLiteral("ArrInt = unsupported data type provided: %1").arg(text));
        fx_raise("unsupported data type in __array_interface__");
        return false;
    }
    array.dataType = *type;
    return true;
}

bool readStrides(PyObject* dictionary, ArrayDescription& array)
{
    const PyRef strides = entry(dictionary, "strides");
    if (!strides || !fx_isTuple(strides.get()))
        return true;
    const Py_ssize_t count = PyTuple_Size(strides.get());
    return count < 1 || count > 3 || readAxes(strides.get(), array.strides);
}

bool readAddress(PyObject* dictionary, ArrayDescription& array)
{
    const PyRef data = entry(dictionary, "data");
    if (!data) {
        fx_raise("No data provided in __array_interface__");
        return false;
    }
    if (!fx_isTuple(data.get())) {
        fx_raise("Data in __array_interface__ not as tuple");
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
        fx_raise("Null data provided in __array_interface__");
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

// Sizes may be anything here, so products wrap modulo 2^64. The allocation refuses sizes whose products would wrap.
std::int64_t product(std::int64_t a, std::int64_t b)
{
    return std::int64_t(std::uint64_t(a) * std::uint64_t(b));
}

// x uses the array's first stride and y the second, although the height is the first entry of the shape.
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

// True if the described memory seems readable. Otherwise the description may be made up, and copyArray() has to probe
// the memory that it reads.
bool isPlausible(const ArrayExtent& extent)
{
    constexpr std::uint64_t quicklyChecked = std::uint64_t(1) << 36; // 64 GB
    return extent.end - extent.begin <= quicklyChecked &&
           MemoryProbe().canRead(extent.begin, extent.end, MemoryProbe::Pages::Absent);
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
