# What `cmake --install` puts on a system, and the Debian package made of it.
include(GNUInstallDirs)
install(TARGETS tamo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES packaging/tamo.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/tamo.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES packaging/tamo.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES packaging/tamo.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tamo)
set(CPACK_PACKAGE_VENDOR "The Tamo developers")
set(CPACK_PACKAGE_CONTACT "The Tamo developers <tamo@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Desktop editor for XML documents")
set(CPACK_PACKAGE_DESCRIPTION
    "Tamo opens any XML document at once, however large or broken, shows it as text
and as a tree, and keeps every byte that is not edited.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION editors)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-translations-l10n, fonts-dejavu-core, shared-mime-info, hicolor-icon-theme")
include(CPack)
