# The photograph libraries, as targets that every build links the same way:
#   quernal_jpeg    libjpeg-turbo (the libjpeg API: #include <jpeglib.h>)
#   quernal_lcms2   Little CMS (#include <lcms2.h>)
# and, in the native build only (not the Windows builds, not the fuzzing
# build), the command line's other photograph formats:
#   quernal_heif    libheif (HEIC, HEIF, AVIF)
#   quernal_webp    libwebp with its demuxer
#   quernal_tiff    libtiff
#
# Natively these are Debian's libraries, found with pkg-config. Debian has no
# MinGW builds of libjpeg-turbo and Little CMS, so the Windows builds compile
# them from Debian's own source packages, which tools/setup-debian.sh fetches
# and unpacks into QUERNAL_DEPS_SOURCE_DIR. Each Windows build compiles each
# library once, statically, with its own compiler.

if(NOT WIN32)
  find_package(PkgConfig REQUIRED)
  # name: our target; the rest: the pkg-config modules it stands for.
  function(quernal_system_library name)
    string(TOUPPER ${name} prefix)
    pkg_check_modules(${prefix} REQUIRED IMPORTED_TARGET GLOBAL ${ARGN})
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE PkgConfig::${prefix})
  endfunction()

  quernal_system_library(quernal_jpeg libjpeg)
  quernal_system_library(quernal_lcms2 lcms2)
  if(NOT QUERNAL_FUZZ)
    quernal_system_library(quernal_heif libheif)
    quernal_system_library(quernal_webp libwebp libwebpdemux)
    quernal_system_library(quernal_tiff libtiff-4)
  endif()
  return()
endif()

set(QUERNAL_DEPS_SOURCE_DIR /usr/local/src/quernal-deps CACHE PATH
  "The unpacked source packages of libjpeg-turbo and Little CMS (tools/setup-debian.sh fetches them)")
set(jpeg_source ${QUERNAL_DEPS_SOURCE_DIR}/libjpeg-turbo)
set(lcms2_source ${QUERNAL_DEPS_SOURCE_DIR}/lcms2)
if(NOT EXISTS ${jpeg_source}/jpeglib.h OR NOT EXISTS ${lcms2_source}/src/cmsxform.c)
  message(FATAL_ERROR "The sources of libjpeg-turbo and Little CMS are not in ${QUERNAL_DEPS_SOURCE_DIR}: "
    "run tools/setup-debian.sh as root, which fetches them.")
endif()

# Little CMS is plain C with no configuration step: its sources, compiled
# here. Its own warnings are not ours to fix, and its header is a system one
# to the code that includes it.
file(GLOB lcms2_sources CONFIGURE_DEPENDS ${lcms2_source}/src/*.c)
add_library(quernal_lcms2 STATIC ${lcms2_sources})
target_include_directories(quernal_lcms2 SYSTEM PUBLIC ${lcms2_source}/include)
target_include_directories(quernal_lcms2 PRIVATE ${lcms2_source}/src)
target_compile_options(quernal_lcms2 PRIVATE -w)

# libjpeg-turbo builds with CMake and generates jconfig.h, so it is a project
# of its own, configured with this build's toolchain. Only the static library
# is built (not its command-line programs), and the library with the four
# public headers, jconfig.h among them, is copied into deps/ of this build.
# The SIMD code is NASM assembly for win32 and win64 objects; REQUIRE_SIMD
# stops the build rather than silently falling back to plain C.
include(ExternalProject)
set(jpeg_prefix ${CMAKE_BINARY_DIR}/deps)
set(jpeg_library_name ${CMAKE_STATIC_LIBRARY_PREFIX}jpeg${CMAKE_STATIC_LIBRARY_SUFFIX})
set(jpeg_library ${jpeg_prefix}/lib/${jpeg_library_name})
find_program(QUERNAL_NASM nasm REQUIRED)
ExternalProject_Add(quernal_libjpeg_turbo
  SOURCE_DIR ${jpeg_source}
  BINARY_DIR ${jpeg_prefix}/libjpeg-turbo-build
  INSTALL_DIR ${jpeg_prefix}
  PREFIX ${jpeg_prefix}/libjpeg-turbo-prefix
  CMAKE_ARGS -Wno-dev
    -DCMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE}
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=<INSTALL_DIR>
    -DCMAKE_ASM_NASM_COMPILER=${QUERNAL_NASM}
    -DENABLE_SHARED=OFF -DENABLE_STATIC=ON
    -DWITH_TURBOJPEG=OFF -DWITH_SIMD=ON -DREQUIRE_SIMD=ON
  # One job: the build around it keeps the other core busy.
  BUILD_COMMAND ${CMAKE_COMMAND} --build <BINARY_DIR> --target jpeg-static -j 1
  INSTALL_COMMAND
    ${CMAKE_COMMAND} -E make_directory <INSTALL_DIR>/lib <INSTALL_DIR>/include
    COMMAND ${CMAKE_COMMAND} -E copy_if_different <BINARY_DIR>/${jpeg_library_name} <INSTALL_DIR>/lib
    COMMAND ${CMAKE_COMMAND} -E copy_if_different <BINARY_DIR>/jconfig.h
      <SOURCE_DIR>/jpeglib.h <SOURCE_DIR>/jmorecfg.h <SOURCE_DIR>/jerror.h <INSTALL_DIR>/include
  # The library is copied by the install step; this CMake cannot name an
  # install step's outputs, and Ninja must know where the file comes from.
  BUILD_BYPRODUCTS ${jpeg_library}
  LOG_CONFIGURE ON LOG_BUILD ON LOG_INSTALL ON LOG_OUTPUT_ON_FAILURE ON)

# The include folder must exist when the build is generated.
file(MAKE_DIRECTORY ${jpeg_prefix}/include)
add_library(quernal_jpeg STATIC IMPORTED GLOBAL)
set_target_properties(quernal_jpeg PROPERTIES
  IMPORTED_LOCATION ${jpeg_library}
  INTERFACE_INCLUDE_DIRECTORIES ${jpeg_prefix}/include)
add_dependencies(quernal_jpeg quernal_libjpeg_turbo)
