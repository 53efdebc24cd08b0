# SPDX-License-Identifier: GPL-3.0-or-later
# The Debian package, built by CPack (scripts/package.sh). Its library
# dependencies come from dpkg-shlibdeps; the Qt plugins the programs load at
# run time (the display platform, the SVG icon engine) are not linked, so they
# are named here.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME twinsweep)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "Twinsweep developers")
set(CPACK_PACKAGE_CONTACT "Twinsweep developers <twinsweep@users.noreply.github.com>")
set(CPACK_PACKAGE_HOMEPAGE_URL https://github.com/twinsweep/twinsweep)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "find duplicate files and remove the spare copies")
set(CPACK_PACKAGE_DESCRIPTION "Twinsweep looks through the folders you pick for files with the same
contents, shows them in groups, helps you decide which copy of each group
to keep, and moves the others to the Trash or deletes them.
.
The package holds the desktop application and twinsweep-cli, which runs
the same search and removal from the command line.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, libqt6svg6")
# xdg-utils opens the help pages and shows files in the file manager;
# qt6-translations-l10n puts the toolkit's own buttons in the user's language.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "qt6-image-formats-plugins, adwaita-icon-theme, xdg-utils, qt6-translations-l10n")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
include(CPack)
