# Installs the build into an empty folder and looks at what is there.
#
#   cmake -DBUILD=path -DPREFIX=path -DLIBDIR=lib -DZSH_DIR=path -P checkinstall.cmake

file(REMOVE_RECURSE "${PREFIX}")
execute_process(COMMAND ${CMAKE_COMMAND} --install "${BUILD}" --prefix "${PREFIX}"
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

function(expect path)
    if(NOT EXISTS "${PREFIX}/${path}")
        message(SEND_ERROR "not installed: ${path}")
    endif()
endfunction()

expect(bin/importgeometry)
expect(bin/importgeometry-host)
expect(include/importgeometry/importgeometryinterface.h)
expect(${LIBDIR}/importgeometry/importgeometry-plan.so)
expect(${LIBDIR}/qt5/plugins/importgeometry/libimportgeometry.so)
expect(share/applications/importgeometry-host.desktop)
expect(share/bash-completion/completions/importgeometry)
expect(share/doc/importgeometry/guide.ru.md)
expect(share/doc/importgeometry/samples/parcels.mif)
expect(share/fish/vendor_completions.d/importgeometry.fish)
expect(share/icons/hicolor/scalable/apps/importgeometry.svg)
expect(share/man/man1/importgeometry.1)
expect(share/man/man1/importgeometry-host.1)
expect(share/metainfo/importgeometry-host.metainfo.xml)
expect(share/mime/packages/importgeometry.xml)
expect(${ZSH_DIR}/_importgeometry)

# Nothing else, but for what grows by itself: pages, pictures, samples.
file(GLOB_RECURSE installed RELATIVE "${PREFIX}" "${PREFIX}/*")
list(FILTER installed EXCLUDE REGEX "^share/doc/importgeometry/")
list(LENGTH installed count)
if(NOT count EQUAL 14)
    message(SEND_ERROR "${count} files besides the pages, not 14: ${installed}")
endif()

# The desktop entry names what is installed.
file(READ "${PREFIX}/share/applications/importgeometry-host.desktop" entry)
string(REGEX MATCH "\nExec=([^ \n]+)" line "${entry}")
expect(bin/${CMAKE_MATCH_1})
string(REGEX MATCH "\nIcon=([^\n]+)" line "${entry}")
expect(share/icons/hicolor/scalable/apps/${CMAKE_MATCH_1}.svg)
file(READ "${PREFIX}/share/mime/packages/importgeometry.xml" types)
string(REGEX MATCH "mime-type type=\"([^\"]+)\"" line "${types}")
if(NOT entry MATCHES "\nMimeType=${CMAKE_MATCH_1};image/vnd.dxf;\n")
    message(SEND_ERROR "the desktop entry opens other types than ${CMAKE_MATCH_1} and DXF")
endif()

# Links of the pages lead to installed pages and pictures.
file(GLOB pages "${PREFIX}/share/doc/importgeometry/*.md")
foreach(page IN LISTS pages)
    file(READ "${page}" text)
    # Without the bracket before it, which would end the list that the matches become.
    string(REGEX MATCHALL "\\([^(): \n]+\\.(md|png|svg)\\)" links "${text}")
    foreach(link IN LISTS links)
        string(REGEX REPLACE "[()]" "" target "${link}")
        expect(share/doc/importgeometry/${target})
    endforeach()
endforeach()

# The installed program finds the installed plug-in, and no other.
execute_process(
    COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C.UTF-8 "${PREFIX}/bin/importgeometry-host" --auto
        --settings "${PREFIX}/settings"
    OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
if(NOT output MATCHES "${PREFIX}/${LIBDIR}/qt5/plugins/importgeometry/libimportgeometry.so")
    message(SEND_ERROR "the installed program took another plug-in:\n${output}")
endif()

# The installed command finds the library that draws.
execute_process(
    COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C.UTF-8 "${PREFIX}/bin/importgeometry" plan --quiet
        --encoding Windows-1251 "${PREFIX}/share/doc/importgeometry/samples/parcels.mif"
        --output "${PREFIX}/plan.svg"
    COMMAND_ERROR_IS_FATAL ANY)
expect(plan.svg)
