# Which Pythons the plugin is built for.
#
# VANTREL_PYTHON_ROOT         root of the product's Python: a folder with include/python3.X and lib/
# VANTREL_EXTRA_PYTHON_ROOTS  roots of other Pythons for the tests; "auto" looks for a 3.8 in the usual places
#
# Sets VANTREL_PYTHON_VERSIONS (the product's version first), and for each version V the target vantrel_py_V and the
# variable VANTREL_PYTHON_HOME_V. VANTREL_PRODUCT_PYTHON is the product's version.
#
# Interpreters are found by location, not through PATH, because another Python may come first there.

set(VANTREL_PYTHON_ROOT "/usr" CACHE PATH "Root of the Python to embed; the distribution's own by default")
set(VANTREL_EXTRA_PYTHON_ROOTS "auto" CACHE STRING "Roots of other Pythons to test with, or auto")

# Only this file knows which versions are supported.
set(vantrel_offered_pythons 3.11 3.8)
function(vantrel_why_not_offered version out)
    if(version VERSION_GREATER_EQUAL 3.12)
        set(${out} "it crashes when a second thread runs a script and refuses a second start" PARENT_SCOPE)
    elseif(version VERSION_GREATER_EQUAL 3.9)
        set(${out} "it hangs when it is finalised after a second start" PARENT_SCOPE)
    else()
        set(${out} "it lacks parts of the interface that the plugin is built on" PARENT_SCOPE)
    endif()
endfunction()

# Looks below root for an offered version with headers and a shared library. Sets ${out}_version, ${out}_include and
# ${out}_library; if there is none, ${out}_version is empty and ${out}_problem says why.
function(vantrel_probe_python root out)
    set(${out}_version "" PARENT_SCOPE)
    set(problem "no Python headers below ${root}/include")
    file(GLOB include_dirs "${root}/include/python3.*")
    foreach(include_dir IN LISTS include_dirs)
        string(REGEX REPLACE ".*/python(3\\.[0-9]+).*" "\\1" version "${include_dir}")
        if(NOT EXISTS "${include_dir}/Python.h")
            continue()
        endif()
        if(NOT version IN_LIST vantrel_offered_pythons)
            vantrel_why_not_offered(${version} reason)
            set(problem "Python ${version} below ${root} cannot be used: ${reason}")
            continue()
        endif()
        find_library(library NAMES "python${version}" PATHS "${root}/lib/${CMAKE_LIBRARY_ARCHITECTURE}" "${root}/lib"
                     NO_DEFAULT_PATH NO_CACHE)
        if(NOT library OR NOT library MATCHES "\\.so")
            set(problem "Python ${version} below ${root} has no shared library")
            continue()
        endif()
        set(${out}_version "${version}" PARENT_SCOPE)
        set(${out}_include "${include_dir}" PARENT_SCOPE)
        set(${out}_library "${library}" PARENT_SCOPE)
        return()
    endforeach()
    set(${out}_problem "${problem}" PARENT_SCOPE)
endfunction()

macro(vantrel_use_python root)
    add_library(vantrel_py_${probe_version} INTERFACE)
    target_include_directories(vantrel_py_${probe_version} SYSTEM INTERFACE "${probe_include}")
    target_link_libraries(vantrel_py_${probe_version} INTERFACE "${probe_library}")
    list(APPEND VANTREL_PYTHON_VERSIONS "${probe_version}")
    set(VANTREL_PYTHON_HOME_${probe_version} "${root}")
endmacro()

set(VANTREL_PYTHON_VERSIONS "")
vantrel_probe_python("${VANTREL_PYTHON_ROOT}" probe)
if(NOT probe_version)
    message(FATAL_ERROR "${probe_problem}. Set VANTREL_PYTHON_ROOT to the root of a Python 3.11 or 3.8.")
endif()
vantrel_use_python("${VANTREL_PYTHON_ROOT}")
set(VANTREL_PRODUCT_PYTHON "${probe_version}")
message(STATUS "Embedding Python ${probe_version} below ${VANTREL_PYTHON_ROOT}")

if(VANTREL_EXTRA_PYTHON_ROOTS STREQUAL "auto")
    file(GLOB vantrel_candidates "$ENV{PYENV_ROOT}/versions/3.8.*" "$ENV{HOME}/.pyenv/versions/3.8.*"
         "/opt/python3.8*" "/usr/local")
else()
    set(vantrel_candidates "${VANTREL_EXTRA_PYTHON_ROOTS}")
endif()
foreach(root IN LISTS vantrel_candidates)
    vantrel_probe_python("${root}" probe)
    if(probe_version AND NOT probe_version IN_LIST VANTREL_PYTHON_VERSIONS)
        vantrel_use_python("${root}")
        message(STATUS "Testing also with Python ${probe_version} below ${root}")
    endif()
endforeach()
foreach(version IN LISTS vantrel_offered_pythons)
    if(NOT version IN_LIST VANTREL_PYTHON_VERSIONS)
        message(STATUS "Python ${version} with a shared library was not found: no test runs on it")
    endif()
endforeach()
# The script vantrel reads this file to say which Pythons the tests run on.
file(WRITE "${CMAKE_BINARY_DIR}/pythons.txt" "${VANTREL_PYTHON_VERSIONS}\n")
