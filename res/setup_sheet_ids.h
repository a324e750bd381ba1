// The numbers of setup_sheet.rc: the two tabs of the program's options
// sheet and the theme chooser (plain #defines: the resource compiler reads
// this file too). The option controls carry the numbers their settings rows
// name; a number's up-down is its edit's number + 10000.
#pragma once

// "SetupPropertyOne", the program.
#define IDC_SETUP_MAXIMIZE_PAINT 104
#define IDC_SETUP_STARTUP_WINDOW 105
#define IDC_SETUP_SEARCH_PAINT 106
#define IDC_SETUP_COMPRESSION 107
#define IDC_SETUP_WARN_MANUAL 108
#define IDC_SETUP_USE_AD 109
#define IDC_SETUP_WARN_PALETTE 111
#define IDC_SETUP_START_MONDAY 133
#define IDC_SETUP_THEME 2001

// "SetupPropertyTwo", the names: January to December, Sunday to Saturday.
#define IDC_SETUP_FIRST_MONTH 112
#define IDC_SETUP_FIRST_DAY 124

// "ThemeBox", the theme chooser.
#define IDC_THEME_LIST 101
