# The host's stand-in for the platform. One object a thing that a test may bring itself.
add_library(dvx_platform STATIC
    platform/host/clock.cpp
    platform/host/device_root.cpp
    platform/host/held_write.cpp
    platform/host/json_text.cpp
    platform/host/kernel_node.cpp
    platform/host/log.cpp
    platform/host/properties.cpp
    platform/host/property_files.cpp
    platform/host/recording.cpp
    platform/host/recording_file.cpp
    platform/host/recording_lines.cpp
    platform/host/sockets.cpp
    platform/host/standard_files.cpp
    platform/host/thread.cpp
    platform/host/turns.cpp
    platform/host/utf8.cpp)
target_include_directories(dvx_platform PUBLIC platform/host/include)
