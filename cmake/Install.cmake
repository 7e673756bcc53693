# The installed package. A static and a shared build may be installed into one prefix: each brings its own
# targets file, and the package picks the kind that the user asks for.

if(BUILD_SHARED_LIBS)
    set(kind shared)
else()
    set(kind static)
endif()
set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Vorna")

install(TARGETS vorna_core EXPORT VornaCore_${kind}
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(EXPORT VornaCore_${kind} FILE VornaCore-${kind}-targets.cmake NAMESPACE Vorna::
    DESTINATION "${package_dir}")

configure_package_config_file(cmake/VornaConfig.cmake.in "${PROJECT_BINARY_DIR}/VornaConfig.cmake"
    INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/VornaConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/VornaConfig.cmake" "${PROJECT_BINARY_DIR}/VornaConfigVersion.cmake"
    DESTINATION "${package_dir}")

# Relative, so that the installed tree may be moved.
file(RELATIVE_PATH prefix_from_pkgconfig "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
configure_file(cmake/vorna-core.pc.in "${PROJECT_BINARY_DIR}/vorna-core.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/vorna-core.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

if(VORNA_BUILD_TOOLS)
    install(TARGETS vorna-devserver vorna-lint RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
    # It needs the library of the screens, which a static build has inside.
    if(TARGET vorna-preview AND NOT BUILD_SHARED_LIBS)
        install(TARGETS vorna-preview RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
    endif()
    install(DIRECTORY docs/schemas/ DESTINATION "${CMAKE_INSTALL_DATADIR}/vorna/schemas"
        FILES_MATCHING PATTERN "*.schema.json")
endif()
