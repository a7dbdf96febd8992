# Install rules of the Linux package and its CPack settings (Debian package).
#
# The package holds only read-only parts:
#   /usr/lib/vantora/libexec/        the two programs
#   /usr/lib/vantora/dist/ja|en/     each edition's bin/, conf/ and help/ files
#   /usr/lib/vantora/dist/common/    the pictures and the files both editions share
#   /usr/bin/vantora, vantora-cli    the launcher, which lays out a person's own tree under
#                                    $XDG_DATA_HOME/vantora/<edition>/ and starts there
# plus the desktop entry, the icons and the AppStream metainfo.

set(VANTORA_PACKAGE_VERSION "${PROJECT_VERSION}" CACHE STRING
    "Version of the Debian package (a rebuilt package needs a higher one)")
set(VANTORA_APP_ID "org.vantora.Vantora")
set(vt_lib "lib/vantora")

install(TARGETS vantora vantora-cli RUNTIME DESTINATION "${vt_lib}/libexec")

foreach(edition ja en)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/dist/${edition}/" DESTINATION "${vt_lib}/dist/${edition}")
endforeach()
install(DIRECTORY "${PROJECT_SOURCE_DIR}/dist/common/conf" DESTINATION "${vt_lib}/dist/common")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/dist/common/images" DESTINATION "${vt_lib}/dist/common"
  FILES_MATCHING PATTERN "*.png" PATTERN "*.gif" PATTERN "svg" EXCLUDE)

# The launcher reads the version to know when a person's tree needs renewing.
file(WRITE "${PROJECT_BINARY_DIR}/package/VERSION" "${VANTORA_PACKAGE_VERSION}\n")
install(FILES "${PROJECT_BINARY_DIR}/package/VERSION" DESTINATION "${vt_lib}")
foreach(name vantora vantora-cli)
  install(PROGRAMS "${PROJECT_SOURCE_DIR}/dist/linux/vantora-launcher" DESTINATION bin RENAME "${name}")
endforeach()

install(FILES "${PROJECT_SOURCE_DIR}/dist/linux/${VANTORA_APP_ID}.desktop" DESTINATION share/applications)
install(FILES "${PROJECT_SOURCE_DIR}/dist/linux/${VANTORA_APP_ID}.metainfo.xml" DESTINATION share/metainfo)
install(FILES "${PROJECT_SOURCE_DIR}/dist/linux/icons/vantora.svg"
  DESTINATION share/icons/hicolor/scalable/apps RENAME "${VANTORA_APP_ID}.svg")
foreach(size 16 24 32 48 64 128 256)
  install(FILES "${PROJECT_SOURCE_DIR}/dist/linux/icons/vantora-${size}.png"
    DESTINATION "share/icons/hicolor/${size}x${size}/apps" RENAME "${VANTORA_APP_ID}.png")
endforeach()

set(CPACK_GENERATOR "DEB")
set(CPACK_PACKAGE_NAME "vantora")
set(CPACK_PACKAGE_VERSION "${VANTORA_PACKAGE_VERSION}")
set(CPACK_PACKAGE_VENDOR "Vantora developers")
set(CPACK_PACKAGE_CONTACT "Vantora developers <vantora@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "step-count recorder diary for a household")
set(CPACK_PACKAGE_DESCRIPTION "Vantora reads Pedomira activity recorders from a USB reader, keeps \
a household's days in a password-protected database, shows charts, prints reports, exchanges CSV \
files and plans a weight loss. Japanese and English editions; each person's data stay in their \
home folder.")
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION "misc")
set(CPACK_DEBIAN_PACKAGE_PRIORITY "optional")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Not found by the library scan: the X11/Wayland platform plugins, Japanese glyphs.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, fonts-noto-cjk")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils")
include(CPack)
