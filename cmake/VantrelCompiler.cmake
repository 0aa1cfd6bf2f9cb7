# Options for every target: language version, warnings, sanitizers.

add_library(vantrel_options INTERFACE)
target_compile_features(vantrel_options INTERFACE cxx_std_20)
target_compile_options(vantrel_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
    # Log lines name source files: by their path in this repository, not on the machine that built them.
    "-fmacro-prefix-map=${CMAKE_SOURCE_DIR}/="
)
# The macros `slots` and `signals` would collide with the interpreter's headers.
target_compile_definitions(vantrel_options INTERFACE QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII)

if(VANTREL_SANITIZE)
    add_compile_options("-fsanitize=${VANTREL_SANITIZE}" -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options("-fsanitize=${VANTREL_SANITIZE}")
else()
    add_link_options(-Wl,--no-undefined)
endif()

# Optional: makes repeated builds faster, also those in another checkout. Paths below the checkout are hashed as relative
# ones; the folder itself is not hashed, although it stands in the debug information.
find_program(VANTREL_CCACHE ccache)
if(VANTREL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env "CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}" CCACHE_NOHASHDIR=yes
        "${VANTREL_CCACHE}")
endif()
