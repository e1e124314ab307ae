# Install rules, in three components: libktbase, development and tools.

# GNUInstallDirs uses the default architecture of the compiler. For 32-bit libraries on a 64-bit machine,
# Debian uses /usr/lib32, and other systems use lib.
if(ktbase_m32 AND NOT DEFINED CMAKE_INSTALL_LIBDIR)
  set(ktbase_libdir lib)
  if(CMAKE_INSTALL_PREFIX STREQUAL "/usr" AND EXISTS /etc/debian_version)
    set(ktbase_libdir lib32)
  endif()
  set(CMAKE_INSTALL_LIBDIR ${ktbase_libdir} CACHE PATH "Directory of the library")
endif()
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Neither find_package nor pkg-config searches lib32. find_package searches lib, and every pkg-config,
# those for other machines included, searches share.
set(ktbase_cmake_dir "${CMAKE_INSTALL_LIBDIR}/cmake/ktbase")
set(ktbase_pkg_config_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
if(CMAKE_INSTALL_LIBDIR STREQUAL lib32)
  set(ktbase_cmake_dir lib/cmake/ktbase)
  set(ktbase_pkg_config_dir "${CMAKE_INSTALL_DATADIR}/pkgconfig")
endif()

install(TARGETS ktbase EXPORT ktbase-targets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    COMPONENT libktbase NAMELINK_COMPONENT development
  INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(DIRECTORY include/ktbase "${PROJECT_BINARY_DIR}/include/ktbase"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development FILES_MATCHING PATTERN "*.h")
install(FILES README.md CHANGELOG.md COPYRIGHT
  DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development)
install(DIRECTORY docs examples DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development
  FILES_MATCHING PATTERN "*.md" PATTERN "*.cpp")

# `cmake --install` accepts another prefix, so these files compute the prefix from their own location.
install(EXPORT ktbase-targets NAMESPACE ktbase::
  DESTINATION "${ktbase_cmake_dir}" COMPONENT development)
configure_package_config_file(cmake/ktbase-config.cmake.in
  "${PROJECT_BINARY_DIR}/ktbase-config.cmake" INSTALL_DESTINATION "${ktbase_cmake_dir}"
  NO_SET_AND_CHECK_MACRO)
# 64-bit compilers also build 32-bit hosts, so the version file must not compare pointer sizes.
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ktbase-config-version.cmake"
  COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
install(FILES "${PROJECT_BINARY_DIR}/ktbase-config.cmake"
  "${PROJECT_BINARY_DIR}/ktbase-config-version.cmake"
  DESTINATION "${ktbase_cmake_dir}" COMPONENT development)

cmake_path(ABSOLUTE_PATH ktbase_pkg_config_dir BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}"
  OUTPUT_VARIABLE ktbase_pc_dir)
file(RELATIVE_PATH ktbase_pc_prefix "${ktbase_pc_dir}" "${CMAKE_INSTALL_PREFIX}")
file(RELATIVE_PATH ktbase_pc_libdir "${CMAKE_INSTALL_PREFIX}" "${CMAKE_INSTALL_FULL_LIBDIR}")
file(RELATIVE_PATH ktbase_pc_includedir
  "${CMAKE_INSTALL_PREFIX}" "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
configure_file(cmake/ktbase.pc.in ktbase.pc @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/ktbase.pc"
  DESTINATION "${ktbase_pkg_config_dir}" COMPONENT development)

include(cmake/manual_page.cmake)
ktbase_install_man(docs/ktbase.3 3 development)
if(TARGET ktsign)
  include(cmake/install_tools.cmake)
endif()
