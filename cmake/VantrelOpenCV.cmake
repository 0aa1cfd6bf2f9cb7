# The four OpenCV modules that the core and the viewer use, as the target vantrel::opencv. Each is looked up separately,
# so that the distribution's packages of these modules are enough.

find_path(VANTREL_OPENCV_INCLUDE_DIR opencv2/imgcodecs.hpp PATH_SUFFIXES opencv4 REQUIRED)
add_library(vantrel_opencv INTERFACE)
add_library(vantrel::opencv ALIAS vantrel_opencv)
target_include_directories(vantrel_opencv SYSTEM INTERFACE "${VANTREL_OPENCV_INCLUDE_DIR}")
foreach(module core imgproc imgcodecs videoio)
    find_library(VANTREL_OPENCV_${module} opencv_${module} REQUIRED)
    target_link_libraries(vantrel_opencv INTERFACE "${VANTREL_OPENCV_${module}}")
endforeach()
