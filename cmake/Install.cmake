# SPDX-License-Identifier: Apache-2.0
# The installed package. Static and shared libraries may be installed into one prefix, from one build or from two: each
# kind has its own targets files, one per component, and the package picks the requested kind.

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Vorna")
# Relative, so that the installed tree may be moved.
file(RELATIVE_PATH prefix_from_pkgconfig "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")

# vorna_install_component(NAME TARGET [PKG_CONFIG FILE]): component Vorna::NAME.
function(vorna_install_component name target)
    cmake_parse_arguments(PARSE_ARGV 2 arg "" "PKG_CONFIG" "")
    foreach(library IN ITEMS ${target} ${target}_shared)
        if(NOT TARGET ${library})
            continue()
        endif()
        get_target_property(type ${library} TYPE)
        if(type STREQUAL "SHARED_LIBRARY")
            set(kind shared)
        else()
            set(kind static)
        endif()
        install(TARGETS ${library} EXPORT Vorna${name}_${kind}
            LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
            ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
            FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
        install(EXPORT Vorna${name}_${kind} FILE Vorna${name}-${kind}-targets.cmake NAMESPACE Vorna::
            DESTINATION "${package_dir}")
    endforeach()
    if(arg_PKG_CONFIG)
        configure_file(cmake/${arg_PKG_CONFIG}.in "${PROJECT_BINARY_DIR}/${arg_PKG_CONFIG}" @ONLY)
        install(FILES "${PROJECT_BINARY_DIR}/${arg_PKG_CONFIG}" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
    endif()
endfunction()

vorna_install_component(Core vorna_core PKG_CONFIG vorna-core.pc)
if(VORNA_BUILD_UI)
    vorna_install_component(Ui vorna_ui PKG_CONFIG vorna-ui.pc)
endif()
if(VORNA_BUILD_BINDINGS)
    vorna_install_component(C vorna_c PKG_CONFIG vorna-c.pc)
    if(VORNA_BUILD_UI)
        vorna_install_component(Qml vorna_qml)
        # The module on an import path needs the shared library: a plugin that contained the library would be a
        # second copy in a host that links it.
        if(BUILD_SHARED_LIBS OR VORNA_BUILD_BOTH_KINDS)
            install(TARGETS vorna_qmlplugin LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/qt6/qml/Vorna")
            install(FILES bindings/qml/qmldir "${PROJECT_BINARY_DIR}/bindings/qml/qml/Vorna/vorna_qml.qmltypes"
                DESTINATION "${CMAKE_INSTALL_LIBDIR}/qt6/qml/Vorna")
        endif()
    endif()
endif()

configure_package_config_file(cmake/VornaConfig.cmake.in "${PROJECT_BINARY_DIR}/VornaConfig.cmake"
    INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/VornaConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/VornaConfig.cmake" "${PROJECT_BINARY_DIR}/VornaConfigVersion.cmake"
    DESTINATION "${package_dir}")

if(VORNA_BUILD_TOOLS)
    install(TARGETS vorna-devserver vorna-lint RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
    # It needs the library of the screens, which a static build contains.
    if(TARGET vorna-preview AND NOT BUILD_SHARED_LIBS)
        install(TARGETS vorna-preview RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
        install(FILES tools/preview/vorna-preview.1 DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
    endif()
    install(FILES tools/devserver/vorna-devserver.1 tools/lint/vorna-lint.1
        DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
    install(DIRECTORY docs/schemas/ DESTINATION "${CMAKE_INSTALL_DATADIR}/vorna/schemas"
        FILES_MATCHING PATTERN "*.schema.json")
endif()
