// The type vantrel.Graph: its objects, their methods and its tables. CxGraphData holds a graph's data and GraphPainting
// draws it; neither needs the interpreter.

#include "CxImageData.h"
#include "ScriptModule.h"
#include "graph/CxGraphData.h"
#include "graph/GraphPainting.h"
#include "support/Convert.h"
#include "support/HostContext.h"
#include "support/NativeGuard.h"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

#include <memory>
#include <utility>

/// The instance record.
struct TxPyGraph {
    PyObject_HEAD CxGraphData* graphData; ///< owned; null for an empty object
};

/// The type object of the running interpreter; null until the module is made.
static PyTypeObject* TxPyGraphType = nullptr;

// ---- construction and destruction ----

static int fx_pygraph_Init(PyObject* self, PyObject* /*args*/, PyObject* /*keywords*/)
{
    delete std::exchange(fx_record<TxPyGraph>(self).graphData, new CxGraphData);
    return 0;
}

// Frees the graph's data but never the object's memory. After the last reference is gone, the record's address still
// holds an empty object.
static void fx_pygraph_Free(PyObject* self)
{
    if (self)
        delete std::exchange(fx_record<TxPyGraph>(self).graphData, nullptr);
}

// ---- shared by the methods ----

// The object's data. Null with an error set if the object is empty.
static CxGraphData* graphOf(PyObject* self)
{
    CxGraphData* graph = self ? fx_record<TxPyGraph>(self).graphData : nullptr;
    if (!graph)
        fx_raise("Graph object is empty");
    return graph;
}

// Colours are always opaque. An alpha value from a script has no effect.
static QColor opaqueColor(int red, int green, int blue)
{
    QColor color;
    color.setRgb(red, green, blue, 255);
    return color;
}

// ---- series ----

static PyObject* fx_pygraph_AddSeries(PyObject* self, PyObject* /*args*/)
{
    CxGraphData* graph = graphOf(self);
    return graph ? PyLong_FromSsize_t(graph->addSeries()) : nullptr;
}

static PyObject* fx_pygraph_SeriesAddPoint(PyObject* self, PyObject* args)
{
    CxGraphData* graph = graphOf(self);
    int series = 0;
    double x = 0.0;
    double y = 0.0;
    if (!graph || !PyArg_ParseTuple(args, "idd", &series, &x, &y))
        return nullptr;
    if (CxGraphData::CxSeries* found = graph->seriesAt(series))
        found->points.append(QPointF(x, y));
    return fx_none();
}

static PyObject* fx_pygraph_SeriesSetLineColor(PyObject* self, PyObject* args)
{
    CxGraphData* graph = graphOf(self);
    int series = 0;
    int red = 0;
    int green = 0;
    int blue = 0;
    int alpha = 0;
    if (!graph || !PyArg_ParseTuple(args, "iiii|i", &series, &red, &green, &blue, &alpha))
        return nullptr;
    if (CxGraphData::CxSeries* found = graph->seriesAt(series))
        found->lineColor = opaqueColor(red, green, blue);
    return fx_none();
}

static PyObject* fx_pygraph_GetSeriesCount(PyObject* self, PyObject* /*args*/)
{
    const CxGraphData* graph = graphOf(self);
    return graph ? PyLong_FromSsize_t(graph->series.size()) : nullptr;
}

// ---- ranges ----

static PyObject* setRange(PyObject* self, PyObject* args, double CxGraphData::*min, double CxGraphData::*max,
                          bool CxGraphData::*automatic)
{
    CxGraphData* graph = graphOf(self);
    double from = 0.0;
    double to = 0.0;
    if (!graph || !PyArg_ParseTuple(args, "dd", &from, &to))
        return nullptr;
    graph->*min = from;
    graph->*max = to;
    graph->*automatic = false;
    return fx_none();
}

static PyObject* setRangeAuto(PyObject* self, PyObject* args, bool CxGraphData::*automatic)
{
    CxGraphData* graph = graphOf(self);
    int on = 0;
    if (!graph || !PyArg_ParseTuple(args, "p", &on))
        return nullptr;
    graph->*automatic = on != 0;
    return fx_none();
}

static PyObject* fx_pygraph_SetXAxisRange(PyObject* self, PyObject* args)
{
    return setRange(self, args, &CxGraphData::xMin, &CxGraphData::xMax, &CxGraphData::autoX);
}

static PyObject* fx_pygraph_SetXAxisRangeAuto(PyObject* self, PyObject* args)
{
    return setRangeAuto(self, args, &CxGraphData::autoX);
}

static PyObject* fx_pygraph_SetYAxisRange(PyObject* self, PyObject* args)
{
    return setRange(self, args, &CxGraphData::yMin, &CxGraphData::yMax, &CxGraphData::autoY);
}

static PyObject* fx_pygraph_SetYAxisRangeAuto(PyObject* self, PyObject* args)
{
    return setRangeAuto(self, args, &CxGraphData::autoY);
}

// ---- colours ----

static PyObject* setColor(PyObject* self, PyObject* args, QColor CxGraphData::*color)
{
    CxGraphData* graph = graphOf(self);
    int red = 0;
    int green = 0;
    int blue = 0;
    int alpha = 0;
    if (!graph || !PyArg_ParseTuple(args, "iii|i", &red, &green, &blue, &alpha))
        return nullptr;
    graph->*color = opaqueColor(red, green, blue);
    return fx_none();
}

static PyObject* fx_pygraph_SetBackgroundColor(PyObject* self, PyObject* args)
{
    return setColor(self, args, &CxGraphData::backgroundColor);
}

static PyObject* fx_pygraph_SetAxesColor(PyObject* self, PyObject* args)
{
    return setColor(self, args, &CxGraphData::axesColor);
}

static PyObject* fx_pygraph_SetGridColor(PyObject* self, PyObject* args)
{
    return setColor(self, args, &CxGraphData::gridColor);
}

static PyObject* fx_pygraph_SetDarkColorTheme(PyObject* self, PyObject* args)
{
    CxGraphData* graph = graphOf(self);
    int on = 1;
    if (!graph || !PyArg_ParseTuple(args, "|p", &on))
        return nullptr;
    graph->setDarkColorTheme(on != 0);
    return fx_none();
}

// ---- output ----

static PyObject* fx_pygraph_DrawIntoImage(PyObject* self, PyObject* args)
{
    CxGraphData* graph = graphOf(self);
    PyObject* object = nullptr;
    if (!graph || !PyArg_ParseTuple(args, "O", &object))
        return nullptr;
    CxImageData* image = fx_pyimg_getImageObjectData(object);
    if (!image)
        return nullptr; // without an error set; the interpreter reports that
    const SxPicBuf* buffer = image->picBuf();
    if (!buffer || !buffer->data || !fx_graph_canDrawInto(*buffer))
        return fx_raise("Image must have RGB or RGBA format");
    fx_script_DrawIntoImage(graph, image);
    return fx_none();
}

// Unlike all other methods, this one counts series from 1.
static PyObject* fx_pygraph_CopySeriesDataToClipboard(PyObject* self, PyObject* args)
{
    CxGraphData* graph = graphOf(self);
    int number = 0;
    if (!graph || !PyArg_ParseTuple(args, "i", &number))
        return nullptr;
    if (const CxGraphData::CxSeries* found = graph->seriesAt(qsizetype(number) - 1))
        QGuiApplication::clipboard()->setText(CxGraphData::seriesText(*found), QClipboard::Clipboard);
    return fx_none();
}

// ---- tables ----

// Writable: the help texts are filled in before the type is made.
static PyMethodDef px_graph_meths[] = {
    {"add_series", guarded<fx_pygraph_AddSeries>, METH_NOARGS, nullptr},
    {"series_add_point", guarded<fx_pygraph_SeriesAddPoint>, METH_VARARGS, nullptr},
    {"series_set_line_color", guarded<fx_pygraph_SeriesSetLineColor>, METH_VARARGS, nullptr},
    {"get_series_count", guarded<fx_pygraph_GetSeriesCount>, METH_NOARGS, nullptr},
    {"set_x_axis_range", guarded<fx_pygraph_SetXAxisRange>, METH_VARARGS, nullptr},
    {"set_x_axis_range_auto", guarded<fx_pygraph_SetXAxisRangeAuto>, METH_VARARGS, nullptr},
    {"set_y_axis_range", guarded<fx_pygraph_SetYAxisRange>, METH_VARARGS, nullptr},
    {"set_y_axis_range_auto", guarded<fx_pygraph_SetYAxisRangeAuto>, METH_VARARGS, nullptr},
    {"set_background_color", guarded<fx_pygraph_SetBackgroundColor>, METH_VARARGS, nullptr},
    {"set_axes_color", guarded<fx_pygraph_SetAxesColor>, METH_VARARGS, nullptr},
    {"set_grid_color", guarded<fx_pygraph_SetGridColor>, METH_VARARGS, nullptr},
    {"set_dark_color_theme", guarded<fx_pygraph_SetDarkColorTheme>, METH_VARARGS, nullptr},
    {"draw_into_image", guarded<fx_pygraph_DrawIntoImage>, METH_VARARGS, nullptr},
    {"copy_series_data_to_clipboard", guarded<fx_pygraph_CopySeriesDataToClipboard>, METH_VARARGS, nullptr},
    {nullptr, nullptr, 0, nullptr},
};

static PyType_Slot TxPyGraphType_Slots[] = {
    {Py_tp_dealloc, guardedSlot<fx_pygraph_Free>()},
    {Py_tp_methods, px_graph_meths},
    {Py_tp_init, guardedSlot<fx_pygraph_Init>()},
    {Py_tp_new, reinterpret_cast<void*>(PyType_GenericNew)},
    {0, nullptr},
};

static PyType_Spec TxPyGraphType_Spec = {
    "vantrel.Graph",     // name
    sizeof(TxPyGraph),   // basicsize
    0,                   // itemsize
    Py_TPFLAGS_DEFAULT,  // flags: cannot be subclassed
    TxPyGraphType_Slots, // slots
};

// ---- registration ----

void fx_pygraphs_TypeReady()
{
    fx_addHelp("vantrel", nullptr, "graphObj", px_graph_meths);
    TxPyGraphType =
        fx_makeType(TxPyGraphType_Spec, "fx_pygraphs_TypeReady(): %1", "Failed to register vantrel.GraphType");
}

int fx_pygraphs_TypeAdd(PyObject* module)
{
    return fx_addType(module, "Graph", TxPyGraphType);
}
