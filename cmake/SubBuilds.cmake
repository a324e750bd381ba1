# The Windows builds and the fuzzing build, configured from this same source
# tree. The console pool runs one sub-build at a time, each with both cores.
include(ExternalProject)

function(quernal_sub_build name)
  ExternalProject_Add(${name}
    SOURCE_DIR ${CMAKE_SOURCE_DIR}
    BINARY_DIR ${CMAKE_BINARY_DIR}/${name}
    CMAKE_ARGS -DCMAKE_BUILD_TYPE=${CMAKE_BUILD_TYPE} ${ARGN}
    BUILD_COMMAND ${CMAKE_COMMAND} --build <BINARY_DIR> -j 2
    INSTALL_COMMAND ""
    BUILD_ALWAYS ON
    USES_TERMINAL_CONFIGURE ON
    USES_TERMINAL_BUILD ON)
endfunction()

if(QUERNAL_WINDOWS_BUILDS)
  quernal_sub_build(windows-x86_64 -DCMAKE_TOOLCHAIN_FILE=${CMAKE_SOURCE_DIR}/cmake/toolchain-mingw-x86_64.cmake)
  quernal_sub_build(windows-i686 -DCMAKE_TOOLCHAIN_FILE=${CMAKE_SOURCE_DIR}/cmake/toolchain-mingw-i686.cmake)
  add_dependencies(windows-i686 windows-x86_64)
  # The Windows Installer packages and portable zips of both, in packages/.
  add_custom_target(package-windows
    COMMAND bash ${CMAKE_SOURCE_DIR}/tools/package.sh --no-build --build ${CMAKE_BINARY_DIR}
    USES_TERMINAL)
  add_dependencies(package-windows windows-x86_64 windows-i686 sample-calendar)
  set(QUERNAL_WIN64_BIN ${CMAKE_BINARY_DIR}/windows-x86_64/bin)
  set(QUERNAL_WIN32_BIN ${CMAKE_BINARY_DIR}/windows-i686/bin)
  add_subdirectory(tests/win32)
endif()

if(QUERNAL_FUZZ_BUILD)
  quernal_sub_build(fuzz -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DQUERNAL_FUZZ=ON)
  if(TARGET windows-i686)
    add_dependencies(fuzz windows-i686)
  endif()
  set(QUERNAL_FUZZ_BIN ${CMAKE_BINARY_DIR}/fuzz/bin)
  add_subdirectory(tests/fuzz/runs)
endif()
