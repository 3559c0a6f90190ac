# cpack: a Debian package that leans on Debian's own Qt and, unless it brings own tools, FFmpeg.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tessaly)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "The Tessaly developers <support@tessaly.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "change the frame size of a video")
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/package")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "Tessaly opens one video, shows what it is and eleven stills of it, and saves
a copy in another frame size as MP4. The size is given in percent, or as a
width or a height whose other side follows. The original is never changed.
.
The command line tessaly-cli does the same without a screen.")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What no library tells: the tools that are run, the plugin that draws the icons, and those that open the window. The library
# for SVG has held its plugin itself up to the version that is named.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-svg-plugins | libqt6svg6 (<< 6.7.2-5~), qt6-qpa-plugins")
if(TESSALY_TOOLS STREQUAL "system")
  string(PREPEND CPACK_DEBIAN_PACKAGE_DEPENDS "ffmpeg, ")
endif()
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland")
include(CPack)
