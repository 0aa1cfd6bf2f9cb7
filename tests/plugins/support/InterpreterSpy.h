#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

#include <optional>

/// Stands between the plugin's objects and the Python library: the functions of the interpreter's start and end are
/// written down and passed on. State of the whole process; reset() before each test.
struct InterpreterSpy {
    static void reset();

    static inline QStringList calls; ///< "Function(arguments)" in the order of the calls

    static inline bool everStarted = false;          ///< not reset
    static inline std::optional<QByteArray> version; ///< what Py_GetVersion answers instead of the truth
    static inline bool versionIsNull = false;        ///< Py_GetVersion answers null
    static inline std::optional<std::wstring> home;  ///< the home directory that the library really gets
    static inline bool finalizeThrows = false;       ///< Py_Finalize throws after its work
    static inline QByteArray refusedModule;          ///< PyImport_AppendInittab fails for this module
    static inline QByteArray refusedConstant;        ///< the PyModule_Add...Constant functions fail for this name
};
