# Which Pythons the plugin is built for.
#
# VANTREL_PYTHON_ROOT         root of the product's Python: a folder with include/python3.X and lib/
# VANTREL_EXTRA_PYTHON_ROOTS  roots of other Pythons for the tests; "auto" looks for them in the usual places
#
# Sets VANTREL_PRODUCT_PYTHON, the product's version, and three lists of versions: VANTREL_PYTHON_VERSIONS, those on which
# every test runs (the product's first, then 3.8 if it is found); VANTREL_FURTHER_PYTHON_VERSIONS, the other offered ones
# that are found, on which a part of the tests runs; and VANTREL_ALL_PYTHON_VERSIONS, both lists. For each version V sets
# VANTREL_PYTHON_HOME_V and makes two targets: vantrel_python_headers_V and, with the library too, vantrel_py_V.
#
# Interpreters are found by location, not through PATH, because another Python may come first there.

set(VANTREL_PYTHON_ROOT "/usr" CACHE PATH "Root of the Python to embed; the distribution's own by default")
set(VANTREL_EXTRA_PYTHON_ROOTS "auto" CACHE STRING "Roots of other Pythons to test with, or auto")

# Only this file knows which versions are offered.
set(vantrel_offered_pythons 3.8 3.9 3.10 3.11 3.12 3.13)
# Tested in full beside the product's: the oldest, whose limited API the plugin keeps to.
set(vantrel_oldest_python 3.8)

# The library of a version below root: sets out to its path, or to an empty text if the headers or the library is missing.
function(vantrel_find_python_library root version out)
    set(${out} "" PARENT_SCOPE)
    if(EXISTS "${root}/include/python${version}/Python.h")
        unset(found) # otherwise find_library() keeps the value
        find_library(found NAMES "python${version}" PATHS "${root}/lib/${CMAKE_LIBRARY_ARCHITECTURE}" "${root}/lib"
                     NO_DEFAULT_PATH NO_CACHE)
        if(found MATCHES "\\.so")
            set(${out} "${found}" PARENT_SCOPE)
        endif()
    endif()
endfunction()

# The offered version below root: the one that the root calls python3, otherwise the newest with headers and a library.
# Sets ${out}_version and ${out}_library, both empty if there is none.
function(vantrel_choose_python root out)
    set(candidates ${vantrel_offered_pythons})
    list(REVERSE candidates)
    file(REAL_PATH "${root}/bin/python3" program)
    if(program MATCHES "/python(3\\.[0-9]+)$" AND CMAKE_MATCH_1 IN_LIST candidates)
        list(PREPEND candidates "${CMAKE_MATCH_1}")
    endif()
    set(${out}_version "" PARENT_SCOPE)
    foreach(version IN LISTS candidates)
        vantrel_find_python_library("${root}" ${version} library)
        if(library)
            set(${out}_version ${version} PARENT_SCOPE)
            break()
        endif()
    endforeach()
    set(${out}_library "${library}" PARENT_SCOPE)
endfunction()

function(vantrel_add_python version root library)
    add_library(vantrel_python_headers_${version} INTERFACE)
    target_include_directories(vantrel_python_headers_${version} SYSTEM INTERFACE "${root}/include/python${version}")
    add_library(vantrel_py_${version} INTERFACE)
    target_link_libraries(vantrel_py_${version} INTERFACE vantrel_python_headers_${version} "${library}")
    set(VANTREL_PYTHON_HOME_${version} "${root}" PARENT_SCOPE)
endfunction()

vantrel_choose_python("${VANTREL_PYTHON_ROOT}" chosen)
if(NOT chosen_version)
    list(JOIN vantrel_offered_pythons ", " versions)
    file(GLOB found RELATIVE "${VANTREL_PYTHON_ROOT}/include" "${VANTREL_PYTHON_ROOT}/include/python3*")
    list(JOIN found ", " found)
    message(FATAL_ERROR "Below ${VANTREL_PYTHON_ROOT} there is no Python that the plugin can be built for. Offered are "
            "${versions}, with headers and a shared library; the headers found there are: ${found}. Set "
            "VANTREL_PYTHON_ROOT to the root of another Python.")
endif()
vantrel_add_python(${chosen_version} "${VANTREL_PYTHON_ROOT}" "${chosen_library}")
set(VANTREL_PRODUCT_PYTHON "${chosen_version}")
set(VANTREL_PYTHON_VERSIONS "${chosen_version}")
set(VANTREL_FURTHER_PYTHON_VERSIONS "")
message(STATUS "Embedding Python ${chosen_version} below ${VANTREL_PYTHON_ROOT}")

foreach(version IN LISTS vantrel_offered_pythons)
    if(version STREQUAL VANTREL_PRODUCT_PYTHON)
        continue()
    endif()
    # Tests with sanitizers take long, and the same objects run on the further versions.
    if(VANTREL_SANITIZE AND NOT version STREQUAL vantrel_oldest_python)
        continue()
    endif()
    if(VANTREL_EXTRA_PYTHON_ROOTS STREQUAL "auto")
        file(GLOB roots "$ENV{PYENV_ROOT}/versions/${version}.*" "$ENV{HOME}/.pyenv/versions/${version}.*"
             "/opt/python${version}*")
        list(APPEND roots "/usr/local" "/usr")
    else()
        set(roots "${VANTREL_EXTRA_PYTHON_ROOTS}")
    endif()
    set(home "")
    foreach(root IN LISTS roots)
        vantrel_find_python_library("${root}" ${version} library)
        if(library)
            set(home "${root}")
            break()
        endif()
    endforeach()
    if(NOT home)
        message(STATUS "Python ${version} with a shared library was not found: no test runs on it")
        continue()
    endif()
    vantrel_add_python(${version} "${home}" "${library}")
    if(version STREQUAL vantrel_oldest_python)
        list(APPEND VANTREL_PYTHON_VERSIONS ${version})
        message(STATUS "Testing also with Python ${version} below ${home}")
    else()
        list(APPEND VANTREL_FURTHER_PYTHON_VERSIONS ${version})
        message(STATUS "Testing in part with Python ${version} below ${home}")
    endif()
endforeach()
set(VANTREL_ALL_PYTHON_VERSIONS ${VANTREL_PYTHON_VERSIONS} ${VANTREL_FURTHER_PYTHON_VERSIONS})
# The script vantrel reads this file to say which Pythons the tests run on: a line with those of all tests, and a line with
# those of a part of them.
file(WRITE "${CMAKE_BINARY_DIR}/pythons.txt" "${VANTREL_PYTHON_VERSIONS}\n${VANTREL_FURTHER_PYTHON_VERSIONS}\n")
