# Builds the plug-in alone, from scratch, as somebody does who has the host's own headers; then makes
# sure that nothing else came of it.
#   cmake -DSOURCE_DIR=... -DBUILD_DIR=... -DPLUGIN=... -DOPTIONS=... -P build_plugin.cmake
# PLUGIN is the file that has to come out; OPTIONS is a list of further configure options, separated
# by "|", since semicolons do not survive a command line.

string(REPLACE "|" ";" options "${OPTIONS}")
file(REMOVE_RECURSE ${BUILD_DIR})
execute_process(
    COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${BUILD_DIR}
        -DHOST_INCLUDE_DIR=${CMAKE_CURRENT_LIST_DIR}/include -DCMAKE_BUILD_TYPE=Debug ${options}
    RESULT_VARIABLE failed)
if(failed)
    message(FATAL_ERROR "The plug-in alone does not configure.")
endif()

execute_process(
    COMMAND ${CMAKE_COMMAND} --build ${BUILD_DIR} --parallel 2 --target SynchronisedDriveTool all
    RESULT_VARIABLE failed)
if(failed)
    message(FATAL_ERROR "The plug-in alone does not build.")
endif()

# Programs and libraries both begin with the ELF magic. CMake's own probes and the object files are
# in CMakeFiles folders.
file(GLOB_RECURSE outputs LIST_DIRECTORIES false ${BUILD_DIR}/*)
list(FILTER outputs EXCLUDE REGEX "/CMakeFiles/")
set(binaries)
foreach(output IN LISTS outputs)
    file(READ ${output} magic LIMIT 4 HEX)
    if(magic STREQUAL "7f454c46")
        list(APPEND binaries ${output})
    endif()
endforeach()
if(NOT binaries STREQUAL PLUGIN)
    message(FATAL_ERROR "Expected ${PLUGIN} and no other binary, got: ${binaries}")
endif()
