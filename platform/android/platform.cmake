# The platform itself: its liblog and libcutils, as Debian packages them for a desk, with what those
# packages lack in debian/. In a phone's tree packaging/android/Android.bp stands in this file's place.
set(android_packages "android-liblog-dev android-libcutils-dev android-libbase-dev")
find_path(ANDROID_INCLUDE android/log.h PATHS /usr/include/android NO_DEFAULT_PATH)
foreach(name log cutils base)
    find_library(ANDROID_${name} ${name} PATH_SUFFIXES android)
    list(APPEND android_libraries ${ANDROID_${name}})
endforeach()
if(NOT ANDROID_INCLUDE OR android_libraries MATCHES NOTFOUND)
    message(FATAL_ERROR "The platform's libraries are missing: apt-get install ${android_packages}")
endif()

add_library(dvx_platform STATIC
    platform/android/clock.cpp
    platform/android/debian/properties.cpp
    platform/android/device_root.cpp
    platform/android/kernel_node.cpp
    platform/android/recording.cpp
    platform/android/socket.cpp
    platform/android/thread.cpp)
target_include_directories(dvx_platform SYSTEM PUBLIC platform/android/debian ${ANDROID_INCLUDE})
target_link_libraries(dvx_platform PUBLIC ${android_libraries})
# Where the loader does not look by itself.
cmake_path(GET ANDROID_log PARENT_PATH platform_rpath)
