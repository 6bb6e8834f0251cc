# What every target of the project has in common: the language, the warnings, the sanitizers, and a
# build tree laid out like the install tree, so that everything runs unmoved.

include(GNUInstallDirs)

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTOUIC ON)
set(CMAKE_AUTORCC ON)

set(PLUGIN_DIR ${CMAKE_INSTALL_LIBDIR}/workbench/plugins)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})

add_library(project_options INTERFACE)
# They would forbid these to a host's own headers as well, which the plug-in has to take as they are.
if(NOT HOST_INCLUDE_DIR)
    target_compile_definitions(project_options INTERFACE
        QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_URL_CAST_FROM_STRING)
endif()
target_compile_options(project_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Woverloaded-virtual -Wconversion
    $<$<CXX_COMPILER_ID:GNU>:-Wsuggest-override>
    $<$<BOOL:${WARNINGS_AS_ERRORS}>:-Werror>)
if(SANITIZE)
    set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(project_options INTERFACE ${sanitizers})
    target_link_options(project_options INTERFACE ${sanitizers})
endif()
