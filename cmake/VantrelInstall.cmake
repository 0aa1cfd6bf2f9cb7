# Installed files, the CMake package for authors of hosts, and the Debian package.

include(CMakePackageConfigHelpers)

set(VANTREL_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/Vantrel")

install(TARGETS vantrel_host vantrel_core EXPORT VantrelTargets LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(EXPORT VantrelTargets NAMESPACE Vantrel:: DESTINATION "${VANTREL_CMAKE_DIR}")
file(GLOB vantrel_host_headers "${CMAKE_SOURCE_DIR}/host/*.h")
install(FILES ${vantrel_host_headers} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/vantrel")

install(TARGETS vantrel_python_${VANTREL_PRODUCT_PYTHON} LIBRARY DESTINATION "${VANTREL_PLUGIN_DIR}")
install(TARGETS vantrel RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")

install(DIRECTORY "${CMAKE_SOURCE_DIR}/examples/" DESTINATION "${CMAKE_INSTALL_DATADIR}/vantrel/examples"
        PATTERN "__pycache__" EXCLUDE)
install(DIRECTORY "${CMAKE_SOURCE_DIR}/python/" DESTINATION "${VANTREL_PYTHON_DIR}" PATTERN "__pycache__" EXCLUDE)
install(DIRECTORY "${CMAKE_SOURCE_DIR}/stubs/" DESTINATION "${CMAKE_INSTALL_DATADIR}/vantrel/stubs")
install(DIRECTORY "${CMAKE_SOURCE_DIR}/docs/" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(FILES "${CMAKE_SOURCE_DIR}/README.md" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(FILES "${CMAKE_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}" RENAME copyright)
install(FILES "${CMAKE_SOURCE_DIR}/packaging/vantrel.desktop" DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES "${CMAKE_SOURCE_DIR}/packaging/vantrel.svg"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps")
install(FILES "${CMAKE_SOURCE_DIR}/packaging/vantrel.png"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/64x64/apps")

configure_package_config_file("${CMAKE_SOURCE_DIR}/cmake/VantrelConfig.cmake.in"
    "${CMAKE_BINARY_DIR}/VantrelConfig.cmake" INSTALL_DESTINATION "${VANTREL_CMAKE_DIR}"
    PATH_VARS VANTREL_PLUGIN_DIR)
write_basic_package_version_file("${CMAKE_BINARY_DIR}/VantrelConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_BINARY_DIR}/VantrelConfig.cmake" "${CMAKE_BINARY_DIR}/VantrelConfigVersion.cmake"
        DESTINATION "${VANTREL_CMAKE_DIR}")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vantrel)
set(CPACK_PACKAGE_VENDOR "The Vantrel developers")
set(CPACK_PACKAGE_CONTACT "The Vantrel developers <vantrel@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Python scripting for camera viewers, with a viewer")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# dpkg-shlibdeps finds the Python library itself, but not Python's standard library.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libpython3-stdlib, fonts-dejavu-core")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "python3-numpy")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_BINARY_DIR}/lib")
include(CPack)
