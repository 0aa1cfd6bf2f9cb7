# Installed files and the CMake package for authors of hosts. The three components are the Debian packages:
# packaging/make_packages makes vantrel of "program", libvantrel-core1 of "library" and libvantrel-dev of "development".

include(CMakePackageConfigHelpers)

set(VANTREL_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/Vantrel")

install(TARGETS vantrel_core EXPORT VantrelTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT library NAMELINK_COMPONENT development)

install(TARGETS vantrel_codecs LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/vantrel/core1" COMPONENT library)
install(TARGETS vantrel_video LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/vantrel/viewer" COMPONENT program)
install(TARGETS vantrel_python_${VANTREL_PRODUCT_PYTHON} LIBRARY DESTINATION "${VANTREL_PLUGIN_DIR}" COMPONENT program)
install(TARGETS vantrel RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT program)

# A list instead of the folders, because scripts that people run there leave files behind.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/packaging/shared_files.txt")
file(STRINGS "${CMAKE_SOURCE_DIR}/packaging/shared_files.txt" vantrel_shared_files)
foreach(file IN LISTS vantrel_shared_files)
    # Documents lie as in the source tree, so that their links to each other work.
    if(file MATCHES "^docs/|\\.md$")
        set(installed "${CMAKE_INSTALL_DOCDIR}/${file}")
    else()
        set(installed "${CMAKE_INSTALL_DATADIR}/vantrel/${file}")
    endif()
    get_filename_component(folder "${installed}" DIRECTORY)
    set(kind FILES)
    if(file MATCHES "/no-interpreter$") # scripts start it as a program
        set(kind PROGRAMS)
    endif()
    install(${kind} "${CMAKE_SOURCE_DIR}/${file}" DESTINATION "${folder}" COMPONENT program)
endforeach()

install(FILES "${CMAKE_SOURCE_DIR}/packaging/vantrel.desktop"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/applications" COMPONENT program)
install(FILES "${CMAKE_SOURCE_DIR}/packaging/vantrel.svg"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps" COMPONENT program)
install(FILES "${CMAKE_SOURCE_DIR}/packaging/vantrel.png"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/64x64/apps" COMPONENT program)
install(FILES "${CMAKE_SOURCE_DIR}/packaging/vantrel.bash"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" COMPONENT program RENAME vantrel)

install(TARGETS vantrel_host EXPORT VantrelTargets)
install(EXPORT VantrelTargets NAMESPACE Vantrel:: DESTINATION "${VANTREL_CMAKE_DIR}" COMPONENT development)
file(GLOB vantrel_host_headers "${CMAKE_SOURCE_DIR}/host/*.h")
install(FILES ${vantrel_host_headers} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/vantrel" COMPONENT development)
configure_package_config_file("${CMAKE_SOURCE_DIR}/cmake/VantrelConfig.cmake.in"
    "${CMAKE_BINARY_DIR}/VantrelConfig.cmake" INSTALL_DESTINATION "${VANTREL_CMAKE_DIR}"
    PATH_VARS VANTREL_PLUGIN_DIR)
write_basic_package_version_file("${CMAKE_BINARY_DIR}/VantrelConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_BINARY_DIR}/VantrelConfig.cmake" "${CMAKE_BINARY_DIR}/VantrelConfigVersion.cmake"
        DESTINATION "${VANTREL_CMAKE_DIR}" COMPONENT development)
