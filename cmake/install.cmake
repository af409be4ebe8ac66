# What `cmake --install` puts where, and the Debian package CPack makes of it
# (`tools/dev package`): the programs in bin, the desktop entry and the icon in
# share/applications and share/icons, Fenlark's own templates in share/fenlark.
# The string tables are compiled into the programs and need no files.
include(GNUInstallDirs)

install(TARGETS fenlark fenlarkctl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES resources/desktop/fenlark.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES resources/desktop/fenlark.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(DIRECTORY resources/templates/ DESTINATION ${CMAKE_INSTALL_DATADIR}/fenlark/templates)

# The bitmap sizes of the icon, drawn from the SVG at build time.
find_program(RSVG_CONVERT rsvg-convert REQUIRED)
set(FENLARK_ICON_SIZES 16 24 32 48 64 128 256)
set(icon_files)
foreach(size IN LISTS FENLARK_ICON_SIZES)
  set(png ${CMAKE_CURRENT_BINARY_DIR}/icons/${size}/fenlark.png)
  add_custom_command(OUTPUT ${png}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_CURRENT_BINARY_DIR}/icons/${size}
    COMMAND ${RSVG_CONVERT} -w ${size} -h ${size} -o ${png} ${CMAKE_CURRENT_SOURCE_DIR}/resources/desktop/fenlark.svg
    DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/resources/desktop/fenlark.svg
    VERBATIM)
  list(APPEND icon_files ${png})
  install(FILES ${png} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()
add_custom_target(fenlark_icons ALL DEPENDS ${icon_files})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME fenlark)
set(CPACK_PACKAGE_VENDOR "Fenlark")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "booking diary of a small accommodation business")
set(CPACK_PACKAGE_DESCRIPTION "Fenlark keeps the rooms, bookings, rates, clients and accounts of a guest house,\n\
lodge or self-catering property in a local database that works offline and\n\
synchronises with a central server. It includes the desk program fenlark, the\n\
command-line fenlarkctl and the reference synchronisation server fenlark-server.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Fenlark developers <fenlark@example.org>")
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The shared libraries the programs link come from dpkg-shlibdeps; Qt's SQLite
# driver is a plugin loaded by name, which no linker sees.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6sql6-sqlite")
# PDF copies of documents, and Qt's own texts in Spanish.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libreoffice-calc-nogui | libreoffice-calc, libreoffice-writer-nogui | libreoffice-writer, qt6-translations-l10n")
include(CPack)
