# Debian packages, one for each component, for cpack -G DEB.
#
# With a 64-bit compiler, the packages have its architecture. The library in them is 32-bit code in /usr/lib32, as
# in Debian's lib32* packages. No package needs a foreign architecture.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  return()  # the paths of the packages need this prefix
endif()
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ktbase)
set(CPACK_PACKAGE_CONTACT "ktbase maintainers <maintainers@ktbase.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each component has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE ktbase)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_COMPONENTS_ALL libktbase development)

set(CPACK_DEBIAN_LIBKTBASE_PACKAGE_NAME libktbase${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBKTBASE_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LIBKTBASE_DESCRIPTION "low-level services for 32-bit hosts: shared library
Files under a budget, directory enumeration, command line, memory and string
routines, MD5 and SHA as of 1993, and verification of DSA signatures, for
32-bit x86 programs.")
# Installing the library updates the cache of the dynamic linker.
set(CPACK_DEBIAN_LIBKTBASE_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/debian/triggers")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libktbase-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "${CPACK_DEBIAN_LIBKTBASE_PACKAGE_NAME} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
if(ktbase_m32)
  # The headers include 32-bit headers of the language and the system.
  string(APPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ", g++-multilib")
endif()
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "low-level services for 32-bit hosts: development files
Headers, CMake package, pkg-config file, manual page, guide and examples for
programs that use ktbase.")

if(TARGET ktsign)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME ktbase-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "low-level services for 32-bit hosts: signing tool
ktsign makes the domains, keys and signatures that hosts of ktbase verify,
and verifies signatures itself.")

# ---- the documents of every package

set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS CHANGELOG.md)
set(documents "${PROJECT_BINARY_DIR}/package_documents")
file(STRINGS CHANGELOG.md releases REGEX "^## \\[[0-9.]+\\] - ")
set(debian_changelog "")
set(newest "")
foreach(release IN LISTS releases)
  string(REGEX MATCH "([0-9.]+)\\] - (.*)" matched "${release}")
  set(version "${CMAKE_MATCH_1}")
  execute_process(COMMAND date --utc "--date=${CMAKE_MATCH_2}" "+%s;%a, %d %b %Y %T %z"
    OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  list(POP_FRONT date seconds)
  if(newest STREQUAL "")
    set(newest ${seconds})
  endif()
  string(APPEND debian_changelog
    "ktbase (${version}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium\n\n"
    "  * Release ${version}; changelog.gz lists the changes.\n\n"
    " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n\n")
endforeach()
file(WRITE "${documents}/changelog.Debian" "${debian_changelog}")
configure_file(CHANGELOG.md "${documents}/changelog" COPYONLY)
execute_process(COMMAND gzip -9nf changelog changelog.Debian
  WORKING_DIRECTORY "${documents}" COMMAND_ERROR_IS_FATAL ANY)

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(package "${CPACK_DEBIAN_${upper}_PACKAGE_NAME}")
  set(destination "${CMAKE_INSTALL_DATADIR}/doc/${package}")
  install(FILES COPYRIGHT DESTINATION "${destination}" RENAME copyright
    COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES "${documents}/changelog.gz" "${documents}/changelog.Debian.gz"
    DESTINATION "${destination}" COMPONENT ${component} EXCLUDE_FROM_ALL)
  set(overrides "cmake/debian/${component}.lintian-overrides")
  if(CMAKE_INSTALL_LIBDIR STREQUAL lib32 AND EXISTS "${PROJECT_SOURCE_DIR}/${overrides}")
    install(FILES "${overrides}" RENAME "${package}"
      DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides" COMPONENT ${component} EXCLUDE_FROM_ALL)
  endif()
endforeach()

# The date of the newest release is the date of the packages, so every build of a version has the same bytes.
set(CPACK_PROJECT_CONFIG_FILE "${documents}/times.cmake")
file(WRITE "${CPACK_PROJECT_CONFIG_FILE}" "set(ENV{SOURCE_DATE_EPOCH} ${newest})\n")

include(CPack)
