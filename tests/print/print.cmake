# Printing for real, from the native build: a private CUPS server with a PDF
# queue (cups-pdf) as its default printer; Quernal.exe prints to it under
# Wine, and check-print.sh matches every printed page with the page that
# belongs there. Included from tests/win32/CMakeLists.txt.
set(cups_dir ${CMAKE_BINARY_DIR}/cups)
set(cups_queue ${CMAKE_CURRENT_LIST_DIR}/cups-pdf-queue.sh)
add_test(NAME print.cups_start COMMAND ${cups_queue} start ${cups_dir})
add_test(NAME print.cups_stop COMMAND ${cups_queue} stop ${cups_dir})
set_tests_properties(print.cups_start PROPERTIES FIXTURES_SETUP cups SKIP_RETURN_CODE 77 TIMEOUT 60)
set_tests_properties(print.cups_stop PROPERTIES FIXTURES_CLEANUP cups TIMEOUT 60)

set(print_env
  "WINEPREFIX=${CMAKE_BINARY_DIR}/wineprefix"
  "CUPS_DIR=${cups_dir}"
  "CUPS_SERVER=${cups_dir}/cups.sock"
  "RUN_UNDER_WINE=${run_under_wine}"
  "E2E_TESTS=${QUERNAL_WIN64_BIN}/quernal_e2e_tests.exe"
  "QUERNAL_CLI=${CMAKE_BINARY_DIR}/bin/quernal-cli"
  "APP_DIR=${PROJECT_SOURCE_DIR}/res"
  "WORK_DIR=${CMAKE_BINARY_DIR}/print-tests")
foreach(case all_pages:all page_range:range double_sided:double double_sided_face_up:faceup
             no_printer:noprinter page_shape:shape letter_paper:letter)
  string(REPLACE ":" ";" parts ${case})
  list(GET parts 0 name)
  list(GET parts 1 argument)
  add_test(NAME wine.print_${name} COMMAND ${CMAKE_CURRENT_LIST_DIR}/check-print.sh ${argument})
  set_tests_properties(wine.print_${name} PROPERTIES
    FIXTURES_REQUIRED "wine;cups" RESOURCE_LOCK "wine;cups" ENVIRONMENT "${print_env}"
    SKIP_RETURN_CODE 77 TIMEOUT 300)
endforeach()

# The program asks for a printer at start-up: the other end-to-end tests
# run with the queue too, so that no "no printer" message stands in their way.
set_property(TEST wine.e2e_tests APPEND PROPERTY FIXTURES_REQUIRED cups)
set_property(TEST wine.e2e_tests APPEND PROPERTY ENVIRONMENT "CUPS_SERVER=${cups_dir}/cups.sock")
