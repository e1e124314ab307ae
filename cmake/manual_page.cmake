# ktbase_install_man(SOURCE SECTION COMPONENT): a manual page with the version filled in, compressed.
# gzip -n leaves out the time, so the same page gives the same bytes.
function(ktbase_install_man source section component)
  cmake_path(GET source FILENAME page)
  configure_file("${source}" "${page}" @ONLY)
  execute_process(COMMAND gzip -9nf "${page}"
    WORKING_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}" COMMAND_ERROR_IS_FATAL ANY)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${page}.gz"
    DESTINATION "${CMAKE_INSTALL_MANDIR}/man${section}" COMPONENT ${component})
endfunction()
