# One shared library per folder: public headers are installed flat into
# include/ZELKinematics, private headers (*_p.h) stay in the source tree.

set(ZELKIN_INCLUDE_INSTALL_DIR ${CMAKE_INSTALL_INCLUDEDIR}/ZELKinematics)

function(zelkin_set_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra)
    if(ZELKIN_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()

# zelkin_add_library(<name> SOURCES <files...>)
# Creates the shared library <name> with the export header <name>_export.h,
# installs it, and exports it as ZELKinematics::<name>.
function(zelkin_add_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES" ${ARGN})
    add_library(${name} SHARED ${ARG_SOURCES})
    add_library(ZELKinematics::${name} ALIAS ${name})
    generate_export_header(${name} BASE_NAME ${name})
    set_target_properties(${name} PROPERTIES
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR})
    set(public_headers ${CMAKE_CURRENT_BINARY_DIR}/${name}_export.h)
    foreach(source IN LISTS ARG_SOURCES)
        if(source MATCHES "\\.h$" AND NOT source MATCHES "_p\\.h$")
            list(APPEND public_headers ${CMAKE_CURRENT_SOURCE_DIR}/${source})
        endif()
    endforeach()

    # Every other target of the build sees the public headers only, as a host
    # sees the installed ones: they are linked into one folder of the build
    # tree. The library's own sources reach its private headers beside them.
    set(public_include_dir ${CMAKE_CURRENT_BINARY_DIR}/include)
    file(MAKE_DIRECTORY ${public_include_dir})
    foreach(header IN LISTS public_headers)
        get_filename_component(header_name ${header} NAME)
        file(CREATE_LINK ${header} ${public_include_dir}/${header_name} SYMBOLIC)
    endforeach()
    target_include_directories(${name}
        PUBLIC
            $<BUILD_INTERFACE:${public_include_dir}>
            $<INSTALL_INTERFACE:${ZELKIN_INCLUDE_INSTALL_DIR}>
            # so that hosts may also write <ZELKinematics/zelkinmachine.h>
            $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
        PRIVATE
            ${CMAKE_CURRENT_SOURCE_DIR})
    zelkin_set_warnings(${name})
    install(TARGETS ${name} EXPORT ZELKinematicsTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(FILES ${public_headers} DESTINATION ${ZELKIN_INCLUDE_INSTALL_DIR})
endfunction()
