# What a desktop and a reader find: the starter, the icon, the type of design files, the documents.
configure_file(desktop/kivo.metainfo.xml ${PROJECT_BINARY_DIR}/desktop/io.kivo.kivo.metainfo.xml @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/desktop/io.kivo.kivo.metainfo.xml
  DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES desktop/kivo.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES desktop/kivo.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES desktop/kivo-mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages RENAME kivo.xml)

# Every document that another one points to, in the folders that the links name.
install(FILES README.md ARCHITECTURE.md CONTRIBUTING.md CHANGELOG.md LICENSE
  DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR}
  PATTERN man EXCLUDE PATTERN completion EXCLUDE)
install(FILES kvi/kvi.h DESTINATION ${CMAKE_INSTALL_DOCDIR}/kvi)
install(FILES bench/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/bench)

# Removes what the installs from this build have written; DESTDIR as for them.
add_custom_target(uninstall COMMAND ${CMAKE_COMMAND} -DBUILD=${PROJECT_BINARY_DIR}
  -P ${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake)
