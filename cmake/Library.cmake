# SPDX-License-Identifier: Apache-2.0

# vorna_finish_library(TARGET NAME name SOVERSION version EXPORTS version-script)
#
# Completes a library whose sources, headers and dependencies are set: it is exported as Vorna::NAME, and shared it
# exports only what the version script lists. With VORNA_BUILD_BOTH_KINDS the static library's objects are linked once
# more, as TARGET_shared, so that both kinds cost one compilation.
function(vorna_finish_library target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "NAME;SOVERSION;EXPORTS" "")
    set(libraries ${target})
    if(VORNA_BUILD_BOTH_KINDS)
        # Objects that the static library includes from other targets are not listed among its own.
        get_target_property(objects ${target} SOURCES)
        list(FILTER objects INCLUDE REGEX "^\\$<TARGET_OBJECTS:")
        add_library(${target}_shared SHARED $<TARGET_OBJECTS:${target}> ${objects})
        list(APPEND libraries ${target}_shared)

        get_target_property(headers ${target} HEADER_SET)
        get_target_property(folders ${target} HEADER_DIRS)
        target_sources(${target}_shared PUBLIC FILE_SET HEADERS BASE_DIRS ${folders} FILES ${headers})
        get_target_property(linked ${target} LINK_LIBRARIES)
        get_target_property(interface ${target} INTERFACE_LINK_LIBRARIES)
        # A static library passes its private dependencies on to the linker; a shared one is already linked to them.
        list(FILTER interface EXCLUDE REGEX "^\\$<LINK_ONLY:")
        foreach(list IN ITEMS linked interface)
            foreach(component IN ITEMS Core Ui)
                string(TOLOWER ${component} lower)
                list(TRANSFORM ${list} REPLACE "^Vorna::${component}$" vorna_${lower}_shared)
            endforeach()
        endforeach()
        set_target_properties(${target}_shared PROPERTIES
            AUTOMOC OFF
            LINKER_LANGUAGE CXX
            LINK_LIBRARIES "${linked}"
            INTERFACE_LINK_LIBRARIES "${interface}"
            VERIFY_INTERFACE_HEADER_SETS OFF)
        target_compile_features(${target}_shared PUBLIC cxx_std_20)
    endif()

    foreach(library IN LISTS libraries)
        set_target_properties(${library} PROPERTIES
            OUTPUT_NAME ${target}
            EXPORT_NAME ${arg_NAME}
            VERSION "${PROJECT_VERSION}"
            SOVERSION "${arg_SOVERSION}"
            CXX_VISIBILITY_PRESET hidden
            VISIBILITY_INLINES_HIDDEN ON
            POSITION_INDEPENDENT_CODE ON
            INSTALL_RPATH "$ORIGIN")
        get_target_property(type ${library} TYPE)
        if(type STREQUAL "SHARED_LIBRARY")
            # The library stays in memory when the plugin that loaded it is unloaded: its threads may still be running.
            target_link_options(${library} PRIVATE LINKER:-z,nodelete LINKER:-z,defs
                "LINKER:--version-script=${arg_EXPORTS}")
            set_property(TARGET ${library} APPEND PROPERTY LINK_DEPENDS "${arg_EXPORTS}")
        endif()
    endforeach()
endfunction()
