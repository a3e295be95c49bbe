# The Debian package: `cpack` in a build folder makes it of that folder's program; script/package makes
# the one for users.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME brimlet)
# Staged with DESTDIR, since one file goes to /etc.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
if(CMAKE_CROSSCOMPILING)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
endif()
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
# There is no address yet; the field is mandatory.
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Brimlet developers <brimlet@example.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "paid advertising beside the camera notch")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Brimlet shows advertising. On a laptop whose screen has a camera notch it
places two small black capsules beside the notch, each with a brand's picture,
name and tagline. The person who runs it, the host, is paid for that.
.
It starts with the session and shows an item in the tray. It asks a placement
service every few seconds what to show, and, once the host has entered a
token, sends it a heartbeat every fifteen minutes. On a screen without a notch
nothing is shown and nothing is sent.")

# Libraries are found in the programs, but for Wayland's and the decoder of WebP, which are loaded. A click on
# a capsule runs xdg-open, and HTTPS needs certificates.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
  "ca-certificates, libwayland-client0 (>= 1.20), libwayland-cursor0, qt6-image-formats-plugins, xdg-utils")
# The token is kept in a secret service, which needs a session bus.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
  "default-dbus-session-bus | dbus-session-bus, gnome-keyring | libkf5wallet-bin")
# Qt's Wayland platform shows the panel where there is no X server.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS
  "fonts-inter, fonts-noto-color-emoji, libsecret-tools, qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/debian/conffiles)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
