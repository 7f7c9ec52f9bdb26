# The steps of the install test (cmake -P, STEP=install|find_package|pkg_config|readme).

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
    if(NOT rc EQUAL 0)
        message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}")
    endif()
    set(out "${out}" PARENT_SCOPE)
endfunction()

# Cross-compiled, every program of the installed tree runs under the emulator.
separate_arguments(emulator UNIX_COMMAND "${EMULATOR}")

set(prefix ${WORK}/prefix)

if(STEP STREQUAL "install")
    file(REMOVE_RECURSE ${prefix})
    set(config "")
    if(CONFIG)
        set(config --config ${CONFIG})
    endif()
    run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix} ${config})
    foreach(path include/lcdconfigmodel.h include/lcdconfigmodel/kvc.h bin/lcdcfg
            ${CONFIGDIR}/func/hdr/lcdhdrinputconfig.xml share/schema/catalog.xml lib/pkgconfig/lcdconfigmodel.pc
            lib/cmake/LcdConfigModel/LcdConfigModelConfigVersion.cmake)
        if(NOT EXISTS ${prefix}/${path})
            message(FATAL_ERROR "not installed: ${path}")
        endif()
    endforeach()
    # The installed tool finds the installed plug-in beside it.
    run(${emulator} ${prefix}/bin/lcdcfg plugin)
    string(FIND "${out}" "${prefix}/lib/" at)
    if(at EQUAL -1)
        message(FATAL_ERROR "installed lcdcfg does not load the installed plug-in:\n${out}")
    endif()
    run(${emulator} ${prefix}/bin/lcdcfg check --root ${prefix}/${CONFIGDIR})
    return()
endif()

if(STEP STREQUAL "readme")
    # The ```cpp block after the marker line in the README is host/main.cpp.
    file(READ ${README} readme)
    file(READ ${HOST_SOURCE}/main.cpp code)
    string(FIND "${readme}" "<!-- tests/install/host/main.cpp -->\n```cpp\n" begin)
    if(begin EQUAL -1)
        message(FATAL_ERROR "README.md has no host example block")
    endif()
    string(SUBSTRING "${readme}" ${begin} -1 block)
    string(REGEX REPLACE "^[^\n]*\n```cpp\n" "" block "${block}")
    string(FIND "${block}" "```" end)
    string(SUBSTRING "${block}" 0 ${end} block)
    if(NOT block STREQUAL code)
        file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/readme_block.cpp "${block}")
        message(FATAL_ERROR "README.md's host example differs from tests/install/host/main.cpp "
                            "(README block written to readme_block.cpp)")
    endif()
    return()
endif()

# find_package or pkg_config: configure, build and run the host.
set(build ${WORK}/host-${STEP})
file(REMOVE_RECURSE ${build})
set(args -S ${HOST_SOURCE} -B ${build} -DCMAKE_CXX_COMPILER=${CXX} "-DCMAKE_CXX_FLAGS=${FLAGS}")
if(LAUNCHER)
    list(APPEND args -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER})
endif()
if(TOOLCHAIN)
    list(APPEND args -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN})
    # pkg-config must find the target's Qt, not the build machine's.
    set(ENV{PKG_CONFIG_LIBDIR} ${TARGET_LIBDIR}/pkgconfig:/usr/share/pkgconfig)
endif()
if(STEP STREQUAL "find_package")
    unset(ENV{PKG_CONFIG_PATH})
    run(${CMAKE_COMMAND} ${args} -DCMAKE_PREFIX_PATH=${prefix})
else()
    set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
    run(${CMAKE_COMMAND} ${args} -DHOST_PKGCONFIG=ON)
endif()
run(${CMAKE_COMMAND} --build ${build})

execute_process(COMMAND ${emulator} ${build}/host ${prefix}/lib/liblcdconfigmodelplugin.so ${prefix}/${CONFIGDIR}
    WORKING_DIRECTORY ${prefix}/bin RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
file(READ ${EXPECTED} expected)
if(NOT rc EQUAL 0 OR NOT out STREQUAL expected)
    message(FATAL_ERROR "host (exit ${rc}) answered:\n${out}\nexpected:\n${expected}\ndiagnostics:\n${err}")
endif()
