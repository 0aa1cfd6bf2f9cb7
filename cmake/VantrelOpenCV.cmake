# The four OpenCV modules that the product uses. vantrel::opencv is what the core and the viewer are linked with. The other two
# bring hundreds of libraries and are only for the product's own modules, which are loaded on first use:
# vantrel::opencv_imgcodecs and vantrel::opencv_videoio. Each is looked up separately, so that the distribution's packages of
# these modules are enough.

find_path(VANTREL_OPENCV_INCLUDE_DIR opencv2/imgcodecs.hpp PATH_SUFFIXES opencv4 REQUIRED)
foreach(module core imgproc imgcodecs videoio)
    find_library(VANTREL_OPENCV_${module} opencv_${module} REQUIRED)
endforeach()

add_library(vantrel_opencv INTERFACE)
add_library(vantrel::opencv ALIAS vantrel_opencv)
target_include_directories(vantrel_opencv SYSTEM INTERFACE "${VANTREL_OPENCV_INCLUDE_DIR}")
target_link_libraries(vantrel_opencv INTERFACE "${VANTREL_OPENCV_core}" "${VANTREL_OPENCV_imgproc}")
foreach(module imgcodecs videoio)
    add_library(vantrel_opencv_${module} INTERFACE)
    add_library(vantrel::opencv_${module} ALIAS vantrel_opencv_${module})
    target_link_libraries(vantrel_opencv_${module} INTERFACE vantrel_opencv "${VANTREL_OPENCV_${module}}")
endforeach()
