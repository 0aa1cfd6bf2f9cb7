// The attributes of vantrel.Image: one dictionary look-up finds the getter of a name.

#include "CxImageData.h"
#include "ImageObject.h"
#include "ScriptModule.h"
#include "support/PyRef.h"
#include "zuCore.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>

namespace {

/// What a getter reads. A record that the getter needs is not null.
struct Source {
    PyObject* self;
    const SxPicBuf* buffer;
    const SxImageMetadata* metadata;
};

enum class Need { Nothing, Buffer, Metadata };

struct Attribute {
    const char* name;
    Need need;
    PyObject* (*get)(const Source& from);
};

constexpr long frameRecordSize = 312; // bytes, as the camera interface defines its frame record
constexpr std::uint64_t microsecondsPerSecond = 1000000;

PyObject* number(unsigned value)
{
    return PyLong_FromUnsignedLong(value);
}
PyObject* number(int value)
{
    return PyLong_FromLong(value);
}
PyObject* number(std::uint64_t value)
{
    return PyLong_FromUnsignedLongLong(value);
}
PyObject* number(double value)
{
    return PyFloat_FromDouble(value);
}

// Unlike SxPicBufInfo::fullScale(), this uses bpc without a limit, and the saturation unchanged.
double fullScale(const SxPicBufInfo& info)
{
    return SxPicBufInfo::isFloating(info.dataType) ? double(info.saturation) : std::ldexp(1.0, int(info.bpc)) - 1.0;
}

// The host counts one byte per value for None, but the entry for None says 8 bytes. Readers rely on both.
constexpr std::array<const char*, 12> typeNames = {"|u8", "|i1", "|u1", "|i2", "|u2", "|i4",
                                                   "|u4", "|i8", "|u8", "|f4", "|f8", "|u2"};

/// A new dictionary; null with an error set on failure.
PyRef makeInterface(const SxPicBuf& buffer)
{
    const auto type = std::size_t(buffer.dataType);
    const char* const typestr = type < typeNames.size() ? typeNames[type] : nullptr;
    const PyRef data = PyRef::take(
        Py_BuildValue("(Ki)", static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(buffer.data)), 0));
    if (!data)
        return {};
    const int width = int(buffer.width);
    const int height = int(buffer.height);
    const int channels = int(buffer.channels);
    const int pixelBytes = int(buffer.bytesPerPixel());
    const int stride = int(buffer.lineStride);
    constexpr int version = 3;
    // x is the first axis and y the second, as the strides show.
    if (channels <= 1 || buffer.dataType == ExImageDataType::Packed565)
        return PyRef::take(Py_BuildValue("{s:(ii),s:s,s:O,s:(ii),s:i}", "shape", width, height, "typestr", typestr,
                                         "data", data.get(), "strides", pixelBytes, stride, "version", version));
    return PyRef::take(Py_BuildValue("{s:(iii),s:s,s:O,s:(iii),s:i}", "shape", width, height, channels, "typestr",
                                     typestr, "data", data.get(), "strides", pixelBytes, stride, pixelBytes / channels,
                                     "version", version));
}

/// All that an array interface tells of a buffer.
struct Described {
    const std::uint8_t* data = nullptr;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t lineStride = 0;
    std::uint32_t channels = 0;
    ExImageDataType type = ExImageDataType::None;

    bool operator==(const Described&) const = default;
};

/// The interface that was asked for last. A copy of it is quicker than a new one, and the next question is often about
/// the same image. Scripts get only copies, which share nothing that can be changed.
struct LastInterface {
    Described of;
    PyObject* dictionary; ///< belongs to the running interpreter; null at first
};
LastInterface lastInterface{};

PyObject* arrayInterface(const Source& from)
{
    const SxPicBuf& buffer = *from.buffer;
    const Described asked = {buffer.data,       buffer.width,    buffer.height,
                             buffer.lineStride, buffer.channels, buffer.dataType};
    if (!lastInterface.dictionary || lastInterface.of != asked) {
        PyRef made = makeInterface(buffer);
        if (!made)
            return nullptr;
        const PyRef before = PyRef::take(std::exchange(lastInterface.dictionary, made.release()));
        lastInterface.of = asked;
    }
    // Making the copy may run code of a script, which may ask for another interface.
    const PyRef kept = PyRef::retain(lastInterface.dictionary);
    return PyDict_Copy(kept.get());
}

constexpr Attribute attributes[] = {
    {"width", Need::Buffer, [](const Source& from) { return number(from.buffer->width); }},
    {"height", Need::Buffer, [](const Source& from) { return number(from.buffer->height); }},
    {"bpc", Need::Buffer, [](const Source& from) { return number(from.buffer->bpc); }},
    {"channels", Need::Buffer, [](const Source& from) { return number(from.buffer->channels); }},
    {"frame_number", Need::Buffer, [](const Source& from) { return number(from.buffer->frameNumber); }},
    {"nframe", Need::Buffer, [](const Source& from) { return number(from.buffer->frameNumber); }},
    {"acq_nframe", Need::Buffer, [](const Source& from) { return number(from.buffer->acqFrameNumber); }},
    {"time_stamp", Need::Buffer, [](const Source& from) { return number(from.buffer->timeStamp); }},
    {"tsSec", Need::Buffer, [](const Source& from) { return number(from.buffer->timeStamp / microsecondsPerSecond); }},
    {"tsUSec", Need::Buffer, [](const Source& from) { return number(from.buffer->timeStamp % microsecondsPerSecond); }},
    {"rgb", Need::Buffer, [](const Source& from) { return PyBool_FromLong(from.buffer->isColor); }},
    {"size", Need::Buffer, [](const Source&) { return PyLong_FromLong(frameRecordSize); }},
    {"bp", Need::Buffer,
     [](const Source& from) { return number(std::uint64_t(reinterpret_cast<std::uintptr_t>(from.buffer->data))); }},
    {"bp_size", Need::Buffer, [](const Source& from) { return number(std::uint64_t(from.buffer->dataSize())); }},
    {"frm", Need::Buffer, [](const Source& from) { return number(zuCore_GetZuImgFormatForPicBufInfo(*from.buffer)); }},
    {"black_level", Need::Buffer, [](const Source& from) { return number(from.buffer->blackLevel); }},
    {"padding_x", Need::Buffer,
     [](const Source& from) {
         const SxPicBuf& buffer = *from.buffer;
         return PyLong_FromLongLong(std::int64_t(buffer.lineStride) -
                                    std::int64_t(buffer.bytesPerPixel()) * std::int64_t(buffer.width));
     }},
    {"AbsoluteOffsetX", Need::Buffer, [](const Source&) { return number(0); }},
    {"AbsoluteOffsetY", Need::Buffer, [](const Source&) { return number(0); }},
    {"transport_frm", Need::Metadata, [](const Source& from) { return number(from.metadata->transportFormat); }},
    {"exposure_time_us", Need::Metadata, [](const Source& from) { return number(from.metadata->exposureTimeUs); }},
    {"gain_db", Need::Metadata, [](const Source& from) { return number(double(from.metadata->gainDb)); }},
    {"data_saturation", Need::Buffer, [](const Source& from) { return number(fullScale(*from.buffer)); }},
    {"wb_red", Need::Metadata, [](const Source& from) { return number(double(from.metadata->wbRed)); }},
    {"wb_green", Need::Metadata, [](const Source& from) { return number(double(from.metadata->wbGreen)); }},
    {"wb_blue", Need::Metadata, [](const Source& from) { return number(double(from.metadata->wbBlue)); }},
    {"color_filter_array", Need::Metadata,
     [](const Source& from) { return number(zuCore_GetZuCfaFromColorFilterArray(from.metadata->colorFilterArray)); }},
    {"tof_phases_count", Need::Metadata, [](const Source& from) { return number(from.metadata->tofPhasesCount); }},
    {"tof_multiple_phases_in_buffer", Need::Metadata, [](const Source&) { return number(0); }},
    {"tof_phase_id", Need::Metadata, [](const Source& from) { return number(from.metadata->tofPhaseId); }},
    {"data_sign_mode", Need::Buffer,
     [](const Source& from) { return number(zuCore_GetZuDataSmFromDataType(from.buffer->dataType)); }},
    {"__array_interface__", Need::Buffer, arrayInterface},
    {"tobytes", Need::Nothing,
     [](const Source& from) { return PyCFunction_NewEx(&px_image_meths[0], from.self, nullptr); }},
};

// Maps names to indices in the table. Belongs to the running interpreter.
PyObject* attributeIndex = nullptr;

/// The records behind an object; a missing record is null. The host may compute the records on each call. So every
/// look-up, for any name, calls these functions once and in this order.
Source sourceOf(PyObject* self)
{
    CxImageData* image = fx_pyimg_getImageObjectData(self);
    Source source{self, nullptr, nullptr};
    if (image) {
        source.buffer = image->picBuf();
        source.metadata = image->imageMetadata();
    }
    return source;
}

bool has(const Source& source, Need need)
{
    return need == Need::Nothing || (need == Need::Buffer ? bool(source.buffer) : bool(source.metadata));
}

/// The index of a name in the table, as a borrowed object. Null without an error if the table does not have the name;
/// null with an error set on failure.
PyObject* findAttribute(PyObject* name)
{
    if (Py_TYPE(name) == &PyUnicode_Type)
        return PyDict_GetItemWithError(attributeIndex, name);
    if (!fx_isText(name))
        return nullptr;
    // A subclass may hash and compare as it likes; only its text counts.
    const PyRef text = PyRef::take(PyUnicode_FromObject(name));
    return text ? PyDict_GetItemWithError(attributeIndex, text.get()) : nullptr;
}

} // namespace

bool fx_img_prepareAttributes()
{
    PyRef index = PyRef::take(PyDict_New());
    if (!index)
        return false;
    for (std::size_t i = 0; i < std::size(attributes); ++i) {
        const PyRef name = PyRef::take(PyUnicode_InternFromString(attributes[i].name));
        const PyRef position = PyRef::take(PyLong_FromSize_t(i));
        if (!name || !position || PyDict_SetItem(index.get(), name.get(), position.get()) != 0)
            return false;
    }
    attributeIndex = index.release();
    lastInterface.dictionary = nullptr; // that of an interpreter that has ended
    return true;
}

PyObject* fx_pyimg_GetAttrO(PyObject* self, PyObject* name)
{
    const Source source = sourceOf(self);
    PyObject* position = findAttribute(name);
    if (!position) {
        if (PyErr_Occurred())
            return nullptr;
        return PyObject_GenericGetAttr(self, name);
    }
    const Attribute& attribute = attributes[PyLong_AsSize_t(position)];
    if (!has(source, attribute.need))
        return fx_raise("Vantrel image object is empty");
    return attribute.get(source);
}
