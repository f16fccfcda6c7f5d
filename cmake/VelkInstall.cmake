# What `cmake --install` puts where. The whole can be moved afterwards: nothing holds the prefix.
include(CMakePackageConfigHelpers)

set(packageDir "${CMAKE_INSTALL_LIBDIR}/cmake/velk32")
set(accessorDir "${CMAKE_INSTALL_LIBDIR}/velk")
if(WIN32)
    set(accessorDir "${CMAKE_INSTALL_BINDIR}") # beside the library
endif()

install(FILES include/velk32.h include/velk32_accessor.h DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(TARGETS velk32 EXPORT velk32Targets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(TARGETS velkimage velkfaulty LIBRARY DESTINATION "${accessorDir}")

install(EXPORT velk32Targets NAMESPACE velk32:: DESTINATION "${packageDir}")
configure_package_config_file(cmake/velk32Config.cmake.in
    "${PROJECT_BINARY_DIR}/velk32Config.cmake"
    INSTALL_DESTINATION "${packageDir}"
    PATH_VARS accessorDir)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/velk32ConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/velk32Config.cmake"
    "${PROJECT_BINARY_DIR}/velk32ConfigVersion.cmake"
    DESTINATION "${packageDir}")

file(RELATIVE_PATH prefixFromPc
    "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" prefixFromPc "${prefixFromPc}")
get_target_property(linkName velk32 OUTPUT_NAME)
configure_file(cmake/velk32.pc.in "${PROJECT_BINARY_DIR}/velk32.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/velk32.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

# The manual page is compressed, as Debian's policy wants it.
if(TARGET velk)
    install(TARGETS velk RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
    set(manualPage "${PROJECT_BINARY_DIR}/velk.1")
    file(COPY "${PROJECT_SOURCE_DIR}/docs/velk.1" DESTINATION "${PROJECT_BINARY_DIR}")
    execute_process(COMMAND gzip -9nf "${manualPage}" COMMAND_ERROR_IS_FATAL ANY)
    install(FILES "${manualPage}.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
endif()

set(docDir "${CMAKE_INSTALL_DATADIR}/doc/velk32")
install(FILES LICENSE README.md CHANGELOG.md CONTRIBUTING.md DESTINATION "${docDir}")
install(DIRECTORY docs/ DESTINATION "${docDir}/docs")
install(DIRECTORY examples/ DESTINATION "${docDir}/examples" REGEX "examples/CMakeLists\\.txt$" EXCLUDE)
