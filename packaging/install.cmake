# What a desk gets: one folder that works as the build tree does, with links to its programs; manual pages
# and completions, made by the tool itself; the header for services by its own.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)  # tests and benchmarks are for here
set(home lib/dvxd)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/packaging/debian/folders.cmake)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(pages ${CMAKE_BINARY_DIR}/pages)

install(TARGETS dvxctl dvxd RUNTIME DESTINATION ${home}/bin COMPONENT tools)
install(TARGETS thermalclient LIBRARY DESTINATION ${home}/lib COMPONENT tools)
install(TARGETS hwresource dvxcc qcopt LIBRARY DESTINATION ${home}/device/vendor/lib64 COMPONENT tools)
install(DIRECTORY ${CMAKE_BINARY_DIR}/share/dvxd DESTINATION ${home}/share COMPONENT tools)
install(DIRECTORY DESTINATION bin COMPONENT tools)
install(DIRECTORY DESTINATION sbin COMPONENT tools)
install(CODE "
    set(prefix \$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX})
    foreach(link bin/dvxctl sbin/dvxd)
        cmake_path(GET link FILENAME program)
        file(CREATE_LINK ../${home}/bin/\${program} \${prefix}/\${link} SYMBOLIC)
    endforeach()" COMPONENT tools)

# The pages: dvxctl's and its completions from its own tables, two more from docs/, two written.
file(READ CHANGELOG.md changes)
string(REGEX MATCH "## ${PROJECT_VERSION}, ([A-Z][a-z]+ [0-9]+, [0-9]+)" release "${changes}")
set(DATE "${CMAKE_MATCH_1}")
if(NOT DATE)
    message(FATAL_ERROR "CHANGELOG.md has no date for version ${PROJECT_VERSION}")
endif()
find_program(GZIP gzip REQUIRED)
add_custom_command(OUTPUT ${pages}/dvxctl.1
    COMMAND dvxctl_pages ${pages}
    COMMAND scripts/man-pages ${DATE} ${pages} dvx-recording.5=docs/recordings.md
        dvx-scenario.5=docs/scenarios.md
    COMMAND sh -c "cd \"$1\" && \"$2\" -9nkf *.[1358]" sh ${pages} ${GZIP}
    DEPENDS dvxctl_pages scripts/man-pages docs/recordings.md docs/scenarios.md
        packaging/man/dvxd.8 packaging/man/dvx_client.h.3
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR} VERBATIM)
add_custom_target(pages DEPENDS ${pages}/dvxctl.1)
configure_file(packaging/man/dvxd.8 ${pages}/dvxd.8 @ONLY)
configure_file(packaging/man/dvx_client.h.3 ${pages}/dvx_client.h.3 @ONLY)
foreach(section 1 5 8)
    install(DIRECTORY ${pages}/ DESTINATION share/man/man${section} COMPONENT tools
        FILES_MATCHING PATTERN "*.${section}.gz")
endforeach()
install(FILES ${pages}/dvx_client.h.3.gz DESTINATION share/man/man3 COMPONENT client)
install(FILES ${pages}/dvxctl.bash DESTINATION share/bash-completion/completions RENAME dvxctl
    COMPONENT tools)
install(FILES ${pages}/_dvxctl DESTINATION share/zsh/vendor-completions COMPONENT tools)

# The header, and how other builds find it.
install(FILES client/dvx_client.h DESTINATION include COMPONENT client)
configure_file(packaging/client/dvx-client.pc.in dvx-client.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/dvx-client.pc DESTINATION share/pkgconfig COMPONENT client)
add_library(client INTERFACE)
target_include_directories(client INTERFACE $<INSTALL_INTERFACE:include>)
install(TARGETS client EXPORT dvx-client COMPONENT client)
install(EXPORT dvx-client NAMESPACE dvx:: FILE dvx-client-config.cmake
    DESTINATION share/cmake/dvx-client COMPONENT client)
include(CMakePackageConfigHelpers)
write_basic_package_version_file(dvx-client-config-version.cmake COMPATIBILITY SameMinorVersion
    ARCH_INDEPENDENT)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/dvx-client-config-version.cmake
    DESTINATION share/cmake/dvx-client COMPONENT client)

# Debian's packages: cpack -G DEB.
set(CPACK_COMPONENTS_ALL tools client)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_PACKAGE_CONTACT "dvxd maintainers <maintainers@dvxd.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME dvxd-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "tools for the policy daemon dvxd
dvxctl drives a virtual device, records, replays and explains what dvxd does,
writes reports, and looks for figures that suit a device. With the daemon
itself and stand-ins for a phone's libraries.")
set(CPACK_DEBIAN_CLIENT_PACKAGE_NAME libdvx-client-dev)
set(CPACK_DEBIAN_CLIENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_CLIENT_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_CLIENT_DESCRIPTION "header for services that talk to dvxd
The message, its codes, and operations that send it, with files for
pkg-config and CMake.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR}/lib)
foreach(package tools:dvxd-tools client:libdvx-client-dev)
    string(REPLACE ":" ";" pair ${package})
    list(GET pair 0 component)
    list(GET pair 1 name)
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/doc/${name})
    add_custom_command(OUTPUT ${folder}/changelog.gz
        COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
        COMMAND sh -c "scripts/debian-changelog \"$1\" \"$2\" | \"$3\" -9n >\"$4\"" sh
            ${name} ${CPACK_PACKAGE_CONTACT} ${GZIP} ${folder}/changelog.gz
        DEPENDS CHANGELOG.md scripts/debian-changelog VERBATIM WORKING_DIRECTORY ${CMAKE_SOURCE_DIR})
    add_custom_target(changelog_${component} DEPENDS ${folder}/changelog.gz)
    list(APPEND changelogs changelog_${component})
    install(FILES ${folder}/changelog.gz packaging/debian/copyright
        DESTINATION share/doc/${name} COMPONENT ${component})
endforeach()
install(FILES README.md DESTINATION share/doc/dvxd-tools COMPONENT tools)
install(DIRECTORY docs DESTINATION share/doc/dvxd-tools COMPONENT tools)
include(CPack)

# What scripts/packages builds.
add_custom_target(installed DEPENDS dvxctl dvxd hwresource dvxcc qcopt pages ${changelogs})
