# Debian packages, one for each component, for cpack -G DEB.
#
# Where the compiler's default is 64-bit they are packages of that architecture with 32-bit code in
# /usr/lib32, as Debian's own lib32* packages are: they install without a foreign architecture.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ktbase)
set(CPACK_PACKAGE_CONTACT "ktbase maintainers <maintainers@ktbase.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each component has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
# Whatever the umask of who packages.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
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
# The dynamic linker's cache learns of the library.
set(CPACK_DEBIAN_LIBKTBASE_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/debian/triggers")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libktbase-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "${CPACK_DEBIAN_LIBKTBASE_PACKAGE_NAME} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
if(ktbase_m32)
  # The headers need the 32-bit side of the language's and the system's.
  string(APPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ", g++-multilib")
endif()
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "low-level services for 32-bit hosts: development files
Headers, CMake package, pkg-config file and examples for hosts of ktbase.")

if(TARGET ktsign)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME ktbase-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "low-level services for 32-bit hosts: signing tool
ktsign makes the keys and signatures that hosts of ktbase verify.")

include(CPack)
