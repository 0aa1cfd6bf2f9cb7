// Statistics of a rectangle, as a whole and for each of its rows or columns.

#include "CxImageData.h"
#include "CxPicBufMeas.h"
#include "ImageMethods.h"
#include "ScriptModule.h"
#include "support/PyRef.h"

#include <algorithm>

namespace {

/// A rectangle as a script gives it; a size below 1 reaches to the edge of the image.
struct RectArguments {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    QRect within(const SxPicBufInfo& info) const;
};

PyObject* statisticsDict(const QString& name, const CxHistoData::CxPixelStats& stats)
{
    return Py_BuildValue("{s:s,s:d,s:d,s:d,s:d,s:d,s:d}", "name", name.toUtf8().constData(), "mean", stats.mean,
                         "stdev", stats.stdev, "variance", stats.stdev * stats.stdev, "rms", stats.rms, "min",
                         stats.min, "max", stats.max);
}

/// A new list of what makeItem(index) returns; null with an error set when one of them is null.
template<typename MakeItem>
PyRef newList(Py_ssize_t count, MakeItem makeItem)
{
    PyRef list = PyRef::take(PyList_New(count));
    for (Py_ssize_t i = 0; list && i < count; ++i) {
        PyObject* item = makeItem(i);
        if (!item)
            return PyRef();
        PyList_SetItem(list.get(), i, item);
    }
    return list;
}

// Coordinates beyond any image are brought nearer, so that sums of them stay integers.
int bounded(long long coordinate)
{
    constexpr long long beyondAnyImage = 1 << 30;
    return int(std::clamp(coordinate, -beyondAnyImage, beyondAnyImage));
}

QRect RectArguments::within(const SxPicBufInfo& info) const
{
    const long long w = width < 1 ? (long long)info.width - x : width;
    const long long h = height < 1 ? (long long)info.height - y : height;
    return {QPoint(bounded(x), bounded(y)), QPoint(bounded(x + w - 1), bounded(y + h - 1))};
}

} // namespace

PyObject* fx_pyimg_MeasureRect(PyObject* self, PyObject* args)
{
    RectArguments rect;
    int aboveBlackLevel = 0;
    if (!PyArg_ParseTuple(args, "|iiiip", &rect.x, &rect.y, &rect.width, &rect.height, &aboveBlackLevel))
        return nullptr;
    const SxPicBuf* buffer = fx_img_pixels(self);
    if (!buffer)
        return nullptr;
    CxHistoData::ExHistoDataFlags flags = CxHistoData::Statistics;
    if (aboveBlackLevel)
        flags |= CxHistoData::SubtractBlackLevel;
    CxHistoData data;
    if (!CxPicBufMeas::measureHistogram(data, fx_pyimg_getImageObjectData(self), rect.within(*buffer), flags))
        return fx_img_raise("Cannot measure data");
    return newList(data.stats.size(),
                   [&](Py_ssize_t channel) {
                       return statisticsDict(data.channelNames.value(channel), data.stats[channel]);
                   })
        .release();
}

static PyObject* fx_internal_pyimg_MeasureRowColProfilesInRect(PyObject* self, PyObject* args, bool rows)
{
    RectArguments rect;
    if (!PyArg_ParseTuple(args, "|iiii", &rect.x, &rect.y, &rect.width, &rect.height))
        return nullptr;
    const SxPicBuf* buffer = fx_img_pixels(self);
    if (!buffer)
        return nullptr;
    CxProfileData data;
    if (!CxPicBufMeas::measureRowsColumnsProfileStats(rows, data, fx_pyimg_getImageObjectData(self),
                                                      rect.within(*buffer)))
        return fx_img_raise("Cannot measure profile data");
    const auto channelsOf = [&](Py_ssize_t profile) {
        return newList(data.stats.size(),
                       [&](Py_ssize_t channel) {
                           return statisticsDict(data.channelNames.value(channel), data.stats[channel].value(profile));
                       })
            .release();
    };
    return newList(data.profileCount, channelsOf).release();
}

PyObject* fx_pyimg_MeasureRowProfilesInRect(PyObject* self, PyObject* args)
{
    return fx_internal_pyimg_MeasureRowColProfilesInRect(self, args, true);
}

PyObject* fx_pyimg_MeasureColumnProfilesInRect(PyObject* self, PyObject* args)
{
    return fx_internal_pyimg_MeasureRowColProfilesInRect(self, args, false);
}
