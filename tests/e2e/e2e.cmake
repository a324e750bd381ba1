# Tests that start Quernal.exe and drive it: built in the Windows builds, run
# under Wine by the native build (tests/win32/CMakeLists.txt).
add_executable(quernal_e2e_tests ${CMAKE_CURRENT_LIST_DIR}/e2e_support.cpp ${CMAKE_CURRENT_LIST_DIR}/../win32/dialog_input.cpp ${CMAKE_CURRENT_LIST_DIR}/main_window_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/print_test.cpp ${CMAKE_CURRENT_LIST_DIR}/sheets_test.cpp)
# The records of the calendar file, read from what the program saved.
target_include_directories(quernal_e2e_tests PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR})
target_link_libraries(quernal_e2e_tests PRIVATE ${gtest_main_target} shell32 gdi32 winspool)
add_dependencies(quernal_e2e_tests Quernal)
# The toolbar strip and the start-up screen.
target_sources(quernal_e2e_tests PRIVATE ${CMAKE_CURRENT_LIST_DIR}/toolbar_test.cpp)
add_dependencies(quernal_e2e_tests quernal_test_photograph)
