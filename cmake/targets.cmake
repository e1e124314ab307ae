# Compiler options of the targets.
#   ktbase_native            programs of the build machine
#   ktbase_32bit             hosts of the library: 32-bit x86, i686 baseline
#   ktbase_hardened          the library and ktsign: measures against exploits
#   ktbase_library           the sources of the library
#   ktbase_thread_sanitizer  native programs under ThreadSanitizer, which does not support 32-bit x86
include(CheckCXXSourceCompiles)
include(CMakePushCheckState)

set(ktbase_m32 "")
if(CMAKE_SIZEOF_VOID_P EQUAL 8 AND NOT KTBASE_SIGNER_ONLY)
  set(ktbase_m32 -m32)
  cmake_push_check_state(RESET)
  set(CMAKE_REQUIRED_FLAGS -m32)
  check_cxx_source_compiles("#include <string>\nint main() { return std::string().size(); }"
    KTBASE_COMPILER_BUILDS_32_BIT)
  cmake_pop_check_state()
  if(NOT KTBASE_COMPILER_BUILDS_32_BIT)
    unset(KTBASE_COMPILER_BUILDS_32_BIT CACHE)  # the next run checks again
    message(FATAL_ERROR " ${CMAKE_CXX_COMPILER} cannot build 32-bit programs; on Debian, install "
      "g++-multilib, or build ktsign alone with -DKTBASE_SIGNER_ONLY=ON")
  endif()
endif()

add_library(ktbase_warnings INTERFACE)
target_compile_features(ktbase_warnings INTERFACE cxx_std_20)
target_compile_options(ktbase_warnings INTERFACE
  -Wall -Wextra -Wpedantic $<$<BOOL:${KTBASE_WARNINGS_AS_ERRORS}>:-Werror>
  # g++ 12 reports std::string concatenations as overlapping copies (GCC bug 105651).
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)

add_library(ktbase_native INTERFACE)
target_link_libraries(ktbase_native INTERFACE ktbase_warnings)
if(KTBASE_SANITIZE)
  target_compile_options(ktbase_native INTERFACE
    -fsanitize=${KTBASE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(ktbase_native INTERFACE -fsanitize=${KTBASE_SANITIZE})
endif()

add_library(ktbase_32bit INTERFACE)
target_link_libraries(ktbase_32bit INTERFACE ktbase_native)
# The tuning for i686 uses string instructions for small copies, which are slow on today's processors.
target_compile_options(ktbase_32bit INTERFACE ${ktbase_m32} -march=i686 -mtune=generic)
target_link_options(ktbase_32bit INTERFACE ${ktbase_m32})

add_library(ktbase_hardened INTERFACE)
# Not in a build for coverage: no test can take the branch of the stack check.
target_compile_options(ktbase_hardened INTERFACE
  "$<$<NOT:$<CONFIG:Coverage>>:-fstack-protector-strong>" -fcf-protection)
target_link_options(ktbase_hardened INTERFACE "LINKER:-z,relro,-z,now,-z,noexecstack,-z,text")
# The checked calls need optimisation, which computes the sizes. With a sanitizer they would hide overflows.
if(NOT KTBASE_SANITIZE)
  target_compile_options(ktbase_hardened INTERFACE
    "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
endif()

add_library(ktbase_library INTERFACE)
target_link_libraries(ktbase_library INTERFACE ktbase_32bit ktbase_hardened)
target_compile_options(ktbase_library INTERFACE
  -fPIC -fvisibility=hidden -fvisibility-inlines-hidden)

add_library(ktbase_thread_sanitizer INTERFACE)
target_link_libraries(ktbase_thread_sanitizer INTERFACE ktbase_warnings)
target_compile_options(ktbase_thread_sanitizer INTERFACE -fsanitize=thread -O1 -g)
target_link_options(ktbase_thread_sanitizer INTERFACE -fsanitize=thread)
