# `cpack` in a build tree makes the Debian package of what `cmake --install` installs.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME flaretrim)
set(CPACK_PACKAGE_VENDOR "Flare Trim")
set(CPACK_PACKAGE_CONTACT "Flare Trim <flaretrim@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Trims the particle effects of a game")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
# The libraries that the programs are linked with name their packages; the drawing of icons is a plugin's own affair.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_STRIP_FILES ON)
include(CPack)
