# What `cmake --install` puts beside the two programs (desktop entry, icons,
# AppStream metainfo, man page) and the Debian package `make package` builds.
include(GNUInstallDirs)

set(CLIPWRIGHT_APP_ID io.github.clipwright.Clipwright)
set(_packaging ${PROJECT_SOURCE_DIR}/packaging)

install(FILES ${_packaging}/${CLIPWRIGHT_APP_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
# The release entry carries the project version.
configure_file(${_packaging}/${CLIPWRIGHT_APP_ID}.metainfo.xml.in
               ${PROJECT_BINARY_DIR}/packaging/${CLIPWRIGHT_APP_ID}.metainfo.xml @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/packaging/${CLIPWRIGHT_APP_ID}.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
# The SVG icon and its PNG renders at 16 to 256 pixels, committed side by side.
install(DIRECTORY ${_packaging}/icons/hicolor DESTINATION ${CMAKE_INSTALL_DATADIR}/icons)
install(FILES ${_packaging}/clipwright-cli.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

set(CLIPWRIGHT_MAINTAINER "Clipwright developers <clipwright@example.org>"
    CACHE STRING "Maintainer named in the Debian package")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME clipwright)
set(CPACK_PACKAGE_VENDOR "Clipwright developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "clip manager for professional camcorder cards")
set(CPACK_PACKAGE_DESCRIPTION
    "Clipwright browses camcorder cards (BPAV folders) in two panes, previews takes
with their time code, copies, moves and deletes takes while keeping every index
file consistent, divides and combines folders, imports MP4 files, exports MPEG-2
transport streams and offloads cards to several destinations with verified
copies. clipwright-cli runs the same operations without a window.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT) # clipwright_<version>_<arch>.deb
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${CLIPWRIGHT_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The Debian 12 packages of the shared libraries the two programs need (their
# NEEDED entries; Qt's OpenGL libraries are linked but none of their symbols is used).
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "libqt6core6 (>= 6.4), libqt6gui6 (>= 6.4), libqt6widgets6 (>= 6.4), libqt6network6 (>= 6.4), \
libqt6multimedia6 (>= 6.4), libqt6svg6 (>= 6.4), libxml2, libxxhash0, libavformat59, libavcodec59, \
libswscale6, libswresample4, libavutil57, libstdc++6, libgcc-s1, libc6")
include(CPack)
