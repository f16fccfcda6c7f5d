# What `cpack` makes of an install: an archive for each platform, and on Linux a Debian package.
set(CPACK_PACKAGE_NAME velk32)
set(CPACK_PACKAGE_VENDOR "The Velk developers")
set(CPACK_PACKAGE_CONTACT "The Velk developers <maintainers@velk.invalid>")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/archives")
set(CPACK_PACKAGE_FILE_NAME "velk32-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_GENERATOR TGZ DEB)
if(WIN32)
    set(CPACK_GENERATOR ZIP)
endif()

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "A library with accessor modules, headers, manual and examples. Configuration
utilities call it; definition files describe the boards.")

# What Debian's policy wants beside the manual.
if(NOT WIN32 AND CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(debianLog "${PROJECT_BINARY_DIR}/changelog.Debian")
    file(WRITE "${debianLog}" "velk32 (${PROJECT_VERSION}-1) unstable; urgency=medium

  * CHANGELOG.md tells what has changed.

 -- ${CPACK_PACKAGE_CONTACT}  Sun, 22 Nov 2026 12:00:00 +0000
")
    execute_process(COMMAND gzip -9nf "${debianLog}" COMMAND_ERROR_IS_FATAL ANY)
    install(FILES "${debianLog}.gz" DESTINATION "${docDir}")
    install(FILES LICENSE DESTINATION "${docDir}" RENAME copyright)

    # The modules are no libraries to link with, so that the library's own entry is written here.
    set(control "${PROJECT_BINARY_DIR}/debian")
    file(WRITE "${control}/triggers" "activate-noawait ldconfig\n")
    file(WRITE "${control}/shlibs" "libvelk32 ${PROJECT_VERSION_MAJOR} velk32 (>= ${PROJECT_VERSION})\n")
    set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${control}/triggers" "${control}/shlibs")

    # The project has no address to write to.
    file(WRITE "${control}/velk32" "velk32: bogus-mail-host\nvelk32: bogus-mail-host-in-debian-changelog\n")
    install(FILES "${control}/velk32" DESTINATION share/lintian/overrides)
endif()
include(CPack)
