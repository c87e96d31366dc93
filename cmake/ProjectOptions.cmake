# Settings that every target of this project shares, kept on one interface target.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib/static")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")

add_library(project_options INTERFACE)
target_compile_options(project_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    # Qt's QSKIP is such a macro.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>
    # Ties between equal distances are decided on exact doubles: no fused multiply-add.
    -ffp-contract=off)
if(IMPORTGEOMETRY_WERROR)
    target_compile_options(project_options INTERFACE -Werror)
endif()
if(IMPORTGEOMETRY_SANITIZE)
    target_compile_options(project_options INTERFACE
        -fsanitize=${IMPORTGEOMETRY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(project_options INTERFACE -fsanitize=${IMPORTGEOMETRY_SANITIZE})
    target_compile_definitions(project_options INTERFACE _GLIBCXX_ASSERTIONS)
else()
    # The plug-in reads files from anywhere inside somebody else's process. Fortification wants an
    # optimized build; the sanitizers look closer than either.
    set(optimized $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
    target_compile_options(project_options INTERFACE
        -fstack-protector-strong $<${optimized}:-U_FORTIFY_SOURCE>)
    target_compile_definitions(project_options INTERFACE $<${optimized}:_FORTIFY_SOURCE=2>)
    if(CMAKE_EXECUTABLE_FORMAT STREQUAL "ELF")
        target_link_options(project_options INTERFACE "LINKER:-z,relro" "LINKER:-z,now")
    endif()
endif()
if(IMPORTGEOMETRY_FUZZ)
    target_compile_options(project_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(IMPORTGEOMETRY_COVERAGE)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "Lines are counted by clang: -DCMAKE_CXX_COMPILER=clang++")
    endif()
    # A file for each program and library, to which each of its runs adds.
    set(counting "-fprofile-instr-generate=${PROJECT_BINARY_DIR}/profiles/%m.profraw")
    target_compile_options(project_options INTERFACE ${counting} -fcoverage-mapping)
    target_link_options(project_options INTERFACE ${counting})
endif()
target_compile_definitions(project_options INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_URL_CAST_FROM_STRING
    QT_DEPRECATED_WARNINGS)
