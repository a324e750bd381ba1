# The tests of the Win32 code: built in the Windows builds only, run under
# Wine by the native build (tests/win32/CMakeLists.txt).
enable_language(RC)
add_executable(quernal_win32_tests
  ${CMAKE_CURRENT_LIST_DIR}/../unit/test_support.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gdi_test_support.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gdi_canvas_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/gdi_pages_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/primitives_win32_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/dialog_driver.cpp
  ${CMAKE_CURRENT_LIST_DIR}/dialog_input.cpp
  ${CMAKE_CURRENT_LIST_DIR}/events_dialog_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/replicate_dialog_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/status_box_test.cpp
  # The dialogs under test take their templates and texts from the program's
  # resources.
  ${PROJECT_SOURCE_DIR}/res/Quernal.rc)
set_source_files_properties(${PROJECT_SOURCE_DIR}/res/Quernal.rc PROPERTIES
  INCLUDE_DIRECTORIES "${PROJECT_SOURCE_DIR};${PROJECT_SOURCE_DIR}/src;${PROJECT_SOURCE_DIR}/res"
    OBJECT_DEPENDS "${quernal_resource_parts}")
target_link_libraries(quernal_win32_tests PRIVATE quernal_render quernal_print quernal_calendar quernal_photo_calendar ${gtest_main_target})
target_include_directories(quernal_win32_tests PRIVATE ${CMAKE_CURRENT_LIST_DIR}/../unit ${PROJECT_SOURCE_DIR}/src)

# The theme loader, toolbar and start-up support: they load the real
# THEME_Standard.dll and two faulty plug-ins from beside the test program.
target_sources(quernal_win32_tests PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/theme_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/toolbar_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ui_support_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/main_window_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/font_box_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/picture_open_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/keyboard_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/colour_dialog_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/editor_controls_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/property_page_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/paint_round_trip_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/page_sheet_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/year_sheet_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/setup_sheet_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/wic_picture_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/test_pages.rc)
target_link_libraries(quernal_win32_tests PRIVATE quernal_app_shell quernal_sheets_ui)
# name, lacks ThemeDrawButton, what its ThemeLoad answers
foreach(broken "Partial;1;1" "Refusing;0;0")
  list(GET broken 0 name)
  list(GET broken 1 lacksButton)
  list(GET broken 2 loads)
  add_library(THEME_${name} SHARED ${CMAKE_CURRENT_LIST_DIR}/broken_theme_dll.cpp)
  target_compile_definitions(THEME_${name} PRIVATE BROKEN_THEME_LACKS_BUTTON=${lacksButton} BROKEN_THEME_LOADS=${loads})
  target_include_directories(THEME_${name} PRIVATE ${PROJECT_SOURCE_DIR}/themes)
  set_target_properties(THEME_${name} PROPERTIES PREFIX "")
  target_link_options(THEME_${name} PRIVATE -static)
  add_dependencies(quernal_win32_tests THEME_${name})
endforeach()
add_dependencies(quernal_win32_tests THEME_Standard THEME_Ink)

# A stand-in paint program for the paint round trip.
add_executable(stand_in_paint ${CMAKE_CURRENT_LIST_DIR}/stand_in_paint.cpp)
target_link_options(stand_in_paint PRIVATE -static)
add_dependencies(quernal_win32_tests stand_in_paint)

# A photograph for the tests that select or drop one, made by ImageMagick:
# a plain meadow green that survives JPEG's compression recognisably.
find_program(QUERNAL_CONVERT convert REQUIRED)
set(meadow ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/Meadow.jpg)
add_custom_command(OUTPUT ${meadow}
  COMMAND ${QUERNAL_CONVERT} -size 640x480 "xc:#3C9646" -quality 92 ${meadow}
  VERBATIM)
# A 16-bit TIFF with alpha, as scanners and raw converters write them, for
# Windows Imaging Component: meadow green on the left half, a half
# transparent brick red on the right.
set(shore ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/Shore16.tif)
add_custom_command(OUTPUT ${shore}
  COMMAND ${QUERNAL_CONVERT} -size 64x48 "xc:#3C9646FF" ( -size 32x48 "xc:#C8321480" ) -geometry +32+0
    -compose Copy -composite -depth 16 -compress zip ${shore}
  VERBATIM)
add_custom_target(quernal_test_photograph DEPENDS ${meadow} ${shore})
add_dependencies(quernal_win32_tests quernal_test_photograph)
