// The module `vantrel`: registration, initialisation, running source texts, and the table of its functions.

#include "IxAppDelegate.h"
#include "ScriptModule.h"
#include "app/AppFunctions.h"
#include "support/Convert.h"
#include "support/HostContext.h"
#include "support/InterpreterThread.h"
#include "support/NativeGuard.h"
#include "support/PyRef.h"

#include <cstdio>

// The interpreter's limited headers do not define the start symbol for a whole file.
#ifndef Py_file_input
#define Py_file_input 257
#endif

extern PyMethodDef px_app_funcs[];
extern PyModuleDef px_app_module;

void fx_pyapp_register()
{
    if (!fx_addBuiltinModule("vantrel", py_app_moduleInit))
        std::fputs("Error: could not extend in-built modules table\n", stderr);
}

static PyObject* makeModule()
{
    fx_addHelp("vantrel", px_app_funcs, nullptr, nullptr);
    // The module is useful even if one of its types is missing.
    for (const auto ready : {fx_pycams_TypeReady, fx_pygraphs_TypeReady, fx_pyimages_TypeReady}) {
        ready();
        PyErr_Clear();
    }

    PyObject* module = fx_makeModule(px_app_module);
    if (!module)
        return nullptr;
    for (const auto add : {fx_pycams_TypeAdd, fx_pygraphs_TypeAdd, fx_pyimages_TypeAdd}) {
        add(module);
        PyErr_Clear();
    }
    return module;
}

PyObject* py_app_moduleInit()
{
    const InterpreterThread thread;
    return guarded<makeModule>(); // the help texts come from the host
}

static void runText(const char* text)
{
    const PyRef code = PyRef::take(Py_CompileString(text, "<string>", Py_file_input));
    PyRef result;
    if (PyObject* main = code ? PyImport_AddModule("__main__") : nullptr) {
        PyObject* globals = PyModule_GetDict(main);
        result = PyRef::take(PyEval_EvalCode(code.get(), globals, globals));
    }
    if (PyErr_Occurred() && !fx_isNativeExceptionKept())
        PyErr_Print();
}

void fx_pyapp_RunPythonString(const char* text)
{
    const InterpreterThread thread;
    fx_rethrowNativeException();
    runText(text);
    fx_rethrowNativeException();
}

void fx_script_runText(const std::string& text)
{
    if (text.find('\0') == std::string::npos) {
        fx_pyapp_RunPythonString(text.c_str());
    } else {
        PyErr_SetString(PyExc_ValueError, "source code string cannot contain null bytes");
        PyErr_Print();
    }
}

// ---- shared by the module's functions ----

int fx_app_resolveViewId(IxAppDelegate& delegate, int id)
{
    return id < 0 ? delegate.activeViewId() : id;
}

// ---- tables ----

// Writable: the help texts are filled in before the module is made.
PyMethodDef px_app_funcs[] = {
    {"get_number_devices", guarded<fx_pycams_GetCount>, METH_NOARGS, nullptr},
    {"open_file", guarded<fx_pyapp_OpenFile>, METH_VARARGS, nullptr},
    {"save_to_file", guarded<fx_pyapp_SaveToFile>, METH_VARARGS, nullptr},
    {"duplicate_view", guarded<fx_pyapp_DuplicateView>, METH_VARARGS, nullptr},
    {"get_active_view_id", guarded<fx_pyapp_GetActiveViewId>, METH_NOARGS, nullptr},
    {"activate_view", guarded<fx_pyapp_ActivateView>, METH_VARARGS, nullptr},
    {"close_view", guarded<fx_pyapp_CloseView>, METH_VARARGS, nullptr},
    {"tile_views", guarded<fx_pyapp_TileViews>, METH_NOARGS, nullptr},
    {"switch_full_screen", guarded<fx_pyapp_SwitchFullScreen>, METH_VARARGS, nullptr},
    {"add_chain_object", guarded<fx_pyapp_AddChainObject>, METH_VARARGS, nullptr},
    {"wait_for_next_frame", guarded<fx_pyapp_WaitForNextFrame>, METH_VARARGS, nullptr},
    {"wait", guarded<fx_pyapp_Wait>, METH_VARARGS, nullptr},
    {"get_view_image", guarded<fx_pyapp_GetViewImage>, METH_VARARGS, nullptr},
    {"set_view_image", guarded<fx_pyapp_SetViewImage>, METH_VARARGS, nullptr},
    {"new_view_with_image", guarded<fx_pyapp_NewViewWithImage>, METH_VARARGS, nullptr},
    {"record_video_to_file", guarded<fx_pyapp_RecordVideoToFile>, METH_VARARGS, nullptr},
    {"stop_video_recording", guarded<fx_pyapp_StopVideoRecording>, METH_VARARGS, nullptr},
    {"message_box", guarded<fx_pyapp_MessageBox>, METH_VARARGS, nullptr},
    {"show_notification", guarded<fx_pyapp_ShowNotification>, METH_VARARGS, nullptr},
    {"print_to_error_log", guarded<fx_pyapp_PrintToErrorLog>, METH_VARARGS, nullptr},
    {"ask_user_for_string", guarded<fx_pyapp_AskUserForString>, METH_VARARGS, nullptr},
    {"add_menu_item", guarded<fx_pyapp_AddMenuItem>, METH_VARARGS, nullptr},
    {"run_script", guarded<fx_pyapp_RunScript>, METH_VARARGS, nullptr},
    {"get_working_directory", guarded<fx_pyapp_GetWorkingDirectory>, METH_NOARGS, nullptr},
    {"play_sound", guarded<fx_pyapp_PlaySound>, METH_VARARGS, nullptr},
    {"set_global_variable_img", guarded<fx_pyapp_SetGlobalVariableImg>, METH_VARARGS, nullptr},
    {"get_global_variable_img", guarded<fx_pyapp_GetGlobalVariableImg>, METH_VARARGS, nullptr},
    {"set_global_variable_int", guarded<fx_pyapp_SetGlobalVariableInt>, METH_VARARGS, nullptr},
    {"get_global_variable_int", guarded<fx_pyapp_GetGlobalVariableInt>, METH_VARARGS, nullptr},
    {"set_global_variable_string", guarded<fx_pyapp_SetGlobalVariableString>, METH_VARARGS, nullptr},
    {"get_global_variable_string", guarded<fx_pyapp_GetGlobalVariableString>, METH_VARARGS, nullptr},
    {nullptr, nullptr, 0, nullptr},
};

PyModuleDef px_app_module = {
    PyModuleDef_HEAD_INIT,
    "vantrel",    // m_name
    nullptr,      // m_doc
    -1,           // m_size: the module keeps its state in process-wide variables
    px_app_funcs, // m_methods
    nullptr,      // m_slots
    nullptr,      // m_traverse
    nullptr,      // m_clear
    nullptr,      // m_free
};
