# The Debian package (cpack -G DEB): the programs and the desktop integration under /usr.
# scripts/package builds it and checks it in a scratch root.

set(CPACK_PACKAGE_NAME quillery)
set(CPACK_PACKAGE_VENDOR "The Quillery developers")
set(CPACK_PACKAGE_CONTACT "The Quillery developers <${QUILLERY_FEEDBACK_EMAIL}>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "note outliner that browses a tree of notes column by column")
# Lines of the long description as the control file shows them, each at most 80 characters.
string(CONCAT CPACK_PACKAGE_DESCRIPTION
       "Quillery keeps short notes, text with light markdown styling or pictures,\n"
       "in a tree shown as a row of columns that scrolls sideways. Notes are added,\n"
       "edited, reordered and moved by keyboard or drag and drop, and every change\n"
       "can be undone. A notebook can be shared between machines through a sync\n"
       "folder without losing anyone's work. quillery-cli reads and writes notebooks\n"
       "from scripts.")
set(CPACK_PACKAGE_HOMEPAGE_URL "${QUILLERY_SITE_URL}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# The build keeps debugging information; the package does not need it.
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE "${QUILLERY_BUILD_NUMBER}")
set(CPACK_DEBIAN_PACKAGE_SECTION editors)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The libraries the programs link come from dpkg-shlibdeps; what Qt loads at run time as plugins
# and what the app draws with are named here: native Wayland, TIFF pictures, the fonts.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-wayland, qt6-image-formats-plugins, fonts-dejavu-core")
# The icon theme the icons go into, and the picture viewer and browser the app hands off to.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "hicolor-icon-theme, xdg-utils")

include(CPack)
