# The library for editing source text, as the target vantrel::qscintilla. It brings no file for CMake.

find_path(VANTREL_QSCINTILLA_INCLUDE_DIR Qsci/qsciscintilla.h
          PATHS ${Qt6Core_INCLUDE_DIRS} PATH_SUFFIXES qt6 "${CMAKE_LIBRARY_ARCHITECTURE}/qt6" REQUIRED)
find_library(VANTREL_QSCINTILLA qscintilla2_qt6 REQUIRED)
add_library(vantrel_qscintilla INTERFACE)
add_library(vantrel::qscintilla ALIAS vantrel_qscintilla)
target_include_directories(vantrel_qscintilla SYSTEM INTERFACE "${VANTREL_QSCINTILLA_INCLUDE_DIR}")
target_link_libraries(vantrel_qscintilla INTERFACE "${VANTREL_QSCINTILLA}" Qt6::PrintSupport Qt6::Widgets)
target_compile_definitions(vantrel_qscintilla INTERFACE QSCINTILLA_DLL)
