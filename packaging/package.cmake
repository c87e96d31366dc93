# One Debian package of everything that is installed; scripts/package.sh makes it.

# Who answers is not settled; the address is one that can never be anybody's.
set(IMPORTGEOMETRY_MAINTAINER "importgeometry maintainers <maintainers@importgeometry.invalid>" CACHE STRING
    "Who answers for the package: name and address")

# Without a locale of its own: the name of the month and of the day are English there.
string(TIMESTAMP package_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(changelog.Debian.in changelog.Debian @ONLY)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME "${PROJECT_NAME}")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "${IMPORTGEOMETRY_MAINTAINER}")
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
# Adds what a Debian package has besides, and packs what is packed there.
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_SOURCE_DIR}/debianize.cmake")
set(CPACK_IMPORTGEOMETRY_SOURCE_DIR "${PROJECT_SOURCE_DIR}")
set(CPACK_IMPORTGEOMETRY_CHANGELOG "${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qttranslations5-l10n")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "gdal-bin")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "import of MIF/MID and DXF objects with coordinate catalogues")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"The plug-in lets a Qt 5 desktop application import land and map objects: it
names every vertex and every object, shows them for correction, and returns
one XML text. With it come a desktop program, importgeometry-host, and a
command, importgeometry, that checks drawings, mends what makes them
unreadable, draws plans and writes CSV, GeoJSON and MIF/MID.

The texts of the programs are Russian.")

include(CPack)
