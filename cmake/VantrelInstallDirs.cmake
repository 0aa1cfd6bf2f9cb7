# Folders of the installed product that its programs must know, and how they find its libraries.

# Debian's folders, also below another prefix.
set(CMAKE_INSTALL_LIBDIR "lib/${CMAKE_LIBRARY_ARCHITECTURE}" CACHE PATH "Libraries")
set(CMAKE_INSTALL_DOCDIR "share/doc/vantrel" CACHE PATH "Documentation")
include(GNUInstallDirs)

set(VANTREL_PLUGIN_DIR "${CMAKE_INSTALL_LIBDIR}/vantrel/plugins")

# From the folder of the program to the plugin.
file(RELATIVE_PATH VANTREL_INSTALLED_PLUGIN
     "/${CMAKE_INSTALL_BINDIR}" "/${VANTREL_PLUGIN_DIR}/libvantrel_python.so")

# Installed programs find the core library beside them, wherever the tree is put.
file(RELATIVE_PATH from_bin "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
file(RELATIVE_PATH from_plugin "/${VANTREL_PLUGIN_DIR}" "/${CMAKE_INSTALL_LIBDIR}")
set(CMAKE_INSTALL_RPATH "$ORIGIN/${from_bin}" "$ORIGIN/${from_plugin}")
