# Run by CPack over the installed files before it makes a Debian package of them.

set(root "${CPACK_TEMPORARY_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX}")
set(doc "${root}/share/doc/${CPACK_PACKAGE_NAME}")
set(overrides "${root}/share/lintian/overrides")
set(source "${CPACK_IMPORTGEOMETRY_SOURCE_DIR}")

file(COPY_FILE "${source}/CHANGELOG.md" "${doc}/changelog")
file(COPY_FILE "${CPACK_IMPORTGEOMETRY_CHANGELOG}" "${doc}/changelog.Debian")
file(COPY_FILE "${source}/packaging/copyright" "${doc}/copyright")
file(MAKE_DIRECTORY "${overrides}")
file(COPY_FILE "${source}/packaging/lintian-overrides" "${overrides}/${CPACK_PACKAGE_NAME}")

file(GLOB packed "${root}/share/man/man1/*.1")
list(APPEND packed "${doc}/changelog" "${doc}/changelog.Debian")
execute_process(COMMAND gzip --best --no-name --force ${packed} COMMAND_ERROR_IS_FATAL ANY)

file(GLOB binaries "${root}/bin/*" "${root}/lib/*/importgeometry/*.so"
    "${root}/lib/*/qt5/plugins/importgeometry/*.so")
execute_process(
    COMMAND strip --strip-unneeded --remove-section=.comment --remove-section=.note ${binaries}
    COMMAND_ERROR_IS_FATAL ANY)

# Whatever the umask was of whoever builds the package.
file(GLOB_RECURSE added LIST_DIRECTORIES true "${root}/share/*")
foreach(path IN LISTS added)
    if(IS_DIRECTORY "${path}")
        set(executable OWNER_EXECUTE GROUP_EXECUTE WORLD_EXECUTE)
    else()
        set(executable "")
    endif()
    file(CHMOD "${path}" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ ${executable})
endforeach()
