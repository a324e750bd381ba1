# The Windows packages (tools/package.sh). Included twice: by the Windows
# builds, which build the helper that opens files as the shell does, and by
# the native build, which builds the packages from the Windows builds and
# checks them (tests/win32/CMakeLists.txt).
if(CMAKE_CROSSCOMPILING)
  add_executable(quernal_shell_open ${CMAKE_CURRENT_LIST_DIR}/shell_open.cpp ${PROJECT_SOURCE_DIR}/tests/e2e/e2e_support.cpp
  ${PROJECT_SOURCE_DIR}/tests/win32/dialog_input.cpp)
  target_include_directories(quernal_shell_open PRIVATE ${PROJECT_SOURCE_DIR}/tests ${PROJECT_SOURCE_DIR})
  target_link_libraries(quernal_shell_open PRIVATE shell32 ole32 uuid gdi32)
  return()
endif()

set(check_installer ${CMAKE_CURRENT_LIST_DIR}/check-installer.sh)
set(installer_env
  "BUILD_DIR=${CMAKE_BINARY_DIR}" "WORK_DIR=${CMAKE_BINARY_DIR}/installer-tests")
# Both architectures' packages: their tables, files and zips.
add_test(NAME windows.packages COMMAND ${check_installer} packages)
# The x86_64 package installed, used, upgraded and removed under Wine, in
# a prefix of its own.
add_test(NAME wine.installer COMMAND ${check_installer} install)
set_tests_properties(windows.packages wine.installer PROPERTIES
  ENVIRONMENT "${installer_env}" SKIP_RETURN_CODE 77 TIMEOUT 300 RESOURCE_LOCK installer)

# tools/install-linux.sh: the menu entry, the calendar type and the launcher
# in a throwaway HOME.
add_test(NAME wine.linux_install COMMAND ${CMAKE_CURRENT_LIST_DIR}/check-linux-install.sh)
set_tests_properties(wine.linux_install PROPERTIES
  ENVIRONMENT "BUILD_DIR=${CMAKE_BINARY_DIR};WORK_DIR=${CMAKE_BINARY_DIR}/linux-install-tests"
  SKIP_RETURN_CODE 77 TIMEOUT 300)
