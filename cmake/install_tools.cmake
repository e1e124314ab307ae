# Install rules of ktsign, in the component tools.
include(GNUInstallDirs)
include(cmake/manual_page.cmake)

install(TARGETS ktsign RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
ktbase_install_man(tools/ktsign.1 1 tools)
install(FILES tools/ktsign.bash-completion
  DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME ktsign COMPONENT tools)
