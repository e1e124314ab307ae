# What `cmake --install` puts where of ktsign, in the component tools.
include(GNUInstallDirs)
configure_file(tools/ktsign.1 ktsign.1 @ONLY)
install(TARGETS ktsign RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
install(FILES "${PROJECT_BINARY_DIR}/ktsign.1"
  DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tools)
install(FILES tools/ktsign.bash-completion
  DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME ktsign COMPONENT tools)
