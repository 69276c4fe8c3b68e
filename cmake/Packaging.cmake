# The Debian package: `cpack -G DEB` in a build folder writes it there.
set(QUORIN_MAINTAINER "The Quorin developers <quorin@localhost>" CACHE STRING
    "Whom the package names as its maintainer")

install(FILES packaging/quorin.desktop DESTINATION share/applications)
install(FILES packaging/icons/quorin.svg DESTINATION share/icons/hicolor/scalable/apps)
install(FILES packaging/icons/quorin-symbolic.svg DESTINATION share/icons/hicolor/symbolic/apps)
find_program(GZIP gzip REQUIRED)
foreach(page quorin.1 quorinctl.1)
  set(packed ${CMAKE_BINARY_DIR}/man/${page}.gz)
  add_custom_command(OUTPUT ${packed}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/man
    COMMAND ${GZIP} -9 -n -c ${CMAKE_SOURCE_DIR}/packaging/man/${page} > ${packed}
    DEPENDS packaging/man/${page})
  list(APPEND packed_pages ${packed})
endforeach()
add_custom_target(quorin_man ALL DEPENDS ${packed_pages})
install(FILES ${packed_pages} DESTINATION share/man/man1)
install(FILES packaging/completions/quorinctl DESTINATION share/bash-completion/completions)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quorin)
set(CPACK_PACKAGE_VENDOR Quorin)
set(CPACK_PACKAGE_CONTACT "${QUORIN_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "companion for auditing spreadsheets beside LibreOffice Calc")
set(CPACK_PACKAGE_DESCRIPTION
    "Quorin follows the selected cell and shows in a floating panel what it is made of: its
formula as a tree with live values, what it depends on and what depends on it, and a map of
the workbook. It takes every mark that it makes in a workbook back.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# GTK reads its icons, ours among them, with a loader that it only recommends.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libreoffice-calc, librsvg2-common")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libreoffice-gtk3, libgtk-layer-shell0")
include(CPack)
