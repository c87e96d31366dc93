# Checks what the plug-in library gives to and takes from the process that loads it.
#
#   cmake -DLIBRARY=path -P checksymbols.cmake

function(run_tool out)
    execute_process(COMMAND ${ARGN}
        OUTPUT_VARIABLE text ERROR_VARIABLE errors RESULT_VARIABLE code)
    if(NOT code EQUAL 0)
        message(FATAL_ERROR "${ARGN}: ${code}\n${errors}")
    endif()
    set(${out} "${text}" PARENT_SCOPE)
endfunction()

run_tool(defined nm -D --defined-only --format=posix "${LIBRARY}")
string(REGEX MATCHALL "[^\n]+" lines "${defined}")
list(TRANSFORM lines REPLACE " .*" "")
list(SORT lines)
if(NOT lines STREQUAL "qt_plugin_instance;qt_plugin_query_metadata")
    message(FATAL_ERROR "Exported symbols: ${lines}")
endif()

# What is left to resolve comes from Qt and the language's own libraries, and nothing stays open.
run_tool(dynamic readelf -d --wide "${LIBRARY}")
string(REGEX MATCHALL "\\(NEEDED\\)[^\n]*\\[[^]\n]*" needed "${dynamic}")
list(TRANSFORM needed REPLACE ".*\\[" "")
if(needed STREQUAL "")
    message(FATAL_ERROR "No needed libraries found in:\n${dynamic}")
endif()
foreach(name IN LISTS needed)
    if(NOT name MATCHES "^lib(Qt5(Core|Gui|Widgets)|stdc\\+\\+|gcc_s|c|m|asan|ubsan)\\.so")
        message(FATAL_ERROR "Unexpected library: ${name}")
    endif()
endforeach()

run_tool(resolved sh -c "ldd -r \"${LIBRARY}\" 2>&1")
string(REGEX MATCHALL "undefined symbol: [^ \t\n]+" undefined "${resolved}")
# The sanitizers' functions are in the program that loads the library.
list(FILTER undefined EXCLUDE REGEX ": __(asan|ubsan)_")
if(undefined)
    message(FATAL_ERROR "Left open: ${undefined}")
endif()
if(NOT resolved MATCHES "libQt5Core")
    message(FATAL_ERROR "ldd says nothing of Qt:\n${resolved}")
endif()
