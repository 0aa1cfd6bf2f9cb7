# Installation folders, and the paths on which installed programs find their libraries.

# Debian's folders, also with another prefix.
set(CMAKE_INSTALL_LIBDIR "lib/${CMAKE_LIBRARY_ARCHITECTURE}" CACHE PATH "Libraries")
set(CMAKE_INSTALL_DOCDIR "share/doc/vantrel" CACHE PATH "Documentation")
include(GNUInstallDirs)

set(VANTREL_PLUGIN_DIR "${CMAKE_INSTALL_LIBDIR}/vantrel/plugins")

# The plugin, relative to the folder of the program.
file(RELATIVE_PATH VANTREL_INSTALLED_PLUGIN
     "/${CMAKE_INSTALL_BINDIR}" "/${VANTREL_PLUGIN_DIR}/libvantrel_python.so")

# The viewer's Python side, and the same from the folder of the program.
set(VANTREL_PYTHON_DIR "${CMAKE_INSTALL_DATADIR}/vantrel/python")
file(RELATIVE_PATH VANTREL_INSTALLED_PYTHON "/${CMAKE_INSTALL_BINDIR}" "/${VANTREL_PYTHON_DIR}")

# The example scripts, from the same folder.
file(RELATIVE_PATH VANTREL_INSTALLED_EXAMPLES "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_DATADIR}/vantrel/examples")

# Relative paths, so that installed programs find the core library even if the whole tree is moved.
file(RELATIVE_PATH from_bin "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
file(RELATIVE_PATH from_plugin "/${VANTREL_PLUGIN_DIR}" "/${CMAKE_INSTALL_LIBDIR}")
set(CMAKE_INSTALL_RPATH "$ORIGIN/${from_bin}" "$ORIGIN/${from_plugin}")
