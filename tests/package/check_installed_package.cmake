# cmake -DBUILD_DIR=... -DWORK_DIR=... -DCONSUMER_SOURCE_DIR=... -DCMAKE_GENERATOR=... -P check_installed_package.cmake
#
# Installs BUILD_DIR into WORK_DIR/prefix, configures and builds the consumer
# project against that prefix alone, and runs it.

foreach(variable BUILD_DIR WORK_DIR CONSUMER_SOURCE_DIR CMAKE_GENERATOR)
    if(NOT DEFINED ${variable})
        message(FATAL_ERROR "${variable} is not set")
    endif()
endforeach()

set(prefix "${WORK_DIR}/prefix")
set(consumer_build "${WORK_DIR}/build")
file(REMOVE_RECURSE "${WORK_DIR}")

function(run_step description)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${description} failed (${result})")
    endif()
endfunction()

set(config_arguments)
if(CONFIG)
    set(config_arguments --config "${CONFIG}")
endif()

run_step("installing the project"
    "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}" ${config_arguments})

foreach(private_header zelkinresource_p.h zelgeogeometry_p.h)
    if(EXISTS "${prefix}/include/ZELKinematics/${private_header}")
        message(FATAL_ERROR "the private header ${private_header} was installed")
    endif()
endforeach()

run_step("configuring the host project"
    "${CMAKE_COMMAND}" -S "${CONSUMER_SOURCE_DIR}" -B "${consumer_build}" -G "${CMAKE_GENERATOR}"
        "-DCMAKE_PREFIX_PATH=${prefix}" -DCMAKE_BUILD_TYPE=${CONFIG}
        "-DCMAKE_CXX_FLAGS=${HOST_CXX_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${HOST_LINKER_FLAGS}")
run_step("building the host project"
    "${CMAKE_COMMAND}" --build "${consumer_build}" ${config_arguments})
run_step("running the host application"
    "${consumer_build}/zelkin_host" ${HOST_ARGUMENTS})
