# One function per kind of target, so that a new one is one line.

# For the environment of tests that open Qt's offscreen platform. Only whole stacks, which cost time,
# show the leak sanitizer that a leak is the platform's.
string(JOIN ":" IMPORTGEOMETRY_PLATFORM_LEAKS
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/leaks.supp"
    "print_suppressions=0"
    "fast_unwind_on_malloc=0")

# importgeometry_library(NAME SOURCES... LINK libraries...)
function(importgeometry_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LINK")
    add_library(${name} STATIC ${arg_UNPARSED_ARGUMENTS})
    target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}/src")
    target_link_libraries(${name} PUBLIC ${arg_LINK} PRIVATE project_options)
endfunction()

# importgeometry_label(TESTS...)
#
# Labels tests with the name of their folder, so that `ctest --label-regex` runs one folder.
function(importgeometry_label)
    get_filename_component(label "${CMAKE_CURRENT_SOURCE_DIR}" NAME)
    set_tests_properties(${ARGV} PROPERTIES LABELS "${label}")
endfunction()

# importgeometry_test(NAME SOURCES... [OFFSCREEN] [PLUGIN] LINK libraries...)
#
# A QtTest program, run under the C and under the ru_RU locale, each run with a home and settings of
# its own. OFFSCREEN: it, or a program that it runs, opens Qt's offscreen platform; the leak
# sanitizer then passes over what that platform leaves behind. PLUGIN: it loads the plug-in, from
# PLUGIN_PATH. The target tests_FOLDER builds all programs of a folder.
function(importgeometry_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "OFFSCREEN;PLUGIN" "" "LINK")
    add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
    set_target_properties(${name} PROPERTIES
        AUTOMOC ON
        RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
    target_link_libraries(${name} PRIVATE ${arg_LINK} Qt5::Test project_options)
    get_filename_component(folder "${CMAKE_CURRENT_SOURCE_DIR}" NAME)
    if(NOT TARGET tests_${folder})
        add_custom_target(tests_${folder})
    endif()
    add_dependencies(tests_${folder} ${name})
    if(arg_PLUGIN)
        target_compile_definitions(${name} PRIVATE PLUGIN_PATH="$<TARGET_FILE:importgeometry>")
        add_dependencies(${name} importgeometry)
    endif()
    set(leaks "")
    if(arg_OFFSCREEN)
        set(leaks "${IMPORTGEOMETRY_PLATFORM_LEAKS}")
    endif()
    foreach(locale IN ITEMS C ru_RU.UTF-8)
        set(home "${CMAKE_CURRENT_BINARY_DIR}/home-${name}-${locale}")
        file(MAKE_DIRECTORY "${home}")
        add_test(NAME ${name}.${locale} COMMAND ${name})
        set_tests_properties(${name}.${locale} PROPERTIES
            WORKING_DIRECTORY "${home}"
            ENVIRONMENT "LC_ALL=${locale};QT_QPA_PLATFORM=offscreen;HOME=${home};XDG_CONFIG_HOME=${home}/config;${leaks}")
        importgeometry_label(${name}.${locale})
    endforeach()
endfunction()
