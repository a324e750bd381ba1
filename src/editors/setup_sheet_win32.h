// The program's options sheet, "Setup": the application's options and the
// names of the months and days, bound through the settings rows.
#pragma once
#include <windows.h>

// Shows the sheet modally over `owner`, opening on "Application". OK writes
// the tabs that were shown into the settings; Cancel changes nothing. True
// after OK.
bool EditSetup(HWND owner);
