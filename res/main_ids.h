// The numbers of Quernal.rc: the icon, the main menu's and toolbar's
// commands and the main window's own boxes (plain #defines: the resource
// compiler reads this file too).
#pragma once
#include "res/string_ids.h"

#define IDI_QUERNAL 103

// Commands of the main menu and the toolbar.
#define IDM_OPEN 50
#define IDM_SAVE 51
#define IDM_EDIT_YEAR_BUTTON 52
#define IDM_EDIT_PAGE_BUTTON 53
#define IDM_MANUAL 54
#define IDM_SETUP 55
#define IDM_EXIT 56
#define IDM_NEW 101
#define IDM_SAVE_AS 104
#define IDM_SELECT_PRINTER 105
#define IDM_PRINT_SINGLE 106
#define IDM_PRINT_DOUBLE 107
#define IDM_RECENT_FIRST 180
#define IDM_CUT 202
#define IDM_COPY 203
#define IDM_PASTE 204
#define IDM_EDIT_MONTH 250
#define IDM_REPLICATE 251
#define IDM_EVENTS 252
#define IDM_ZOOM_100 301
#define IDM_ZOOM_200 302
#define IDM_ZOOM_400 303
#define IDM_ZOOM_800 304
#define IDM_PAGE_JANUARY 310
#define IDM_PAGE_YEAR 322
#define IDM_PAGE_COVER 323
#define IDM_EDIT_YEAR 324
#define IDM_SYSTEM_INFORMATION 997
#define IDM_HELP 998
#define IDM_ABOUT 999

// Controls of the display-driver warning (ChangeDriverBox): the icon, text
// and check box ids every warning with a check box has.
#define IDC_DRIVER_ICON 101
#define IDC_DRIVER_TEXT 102
#define IDC_DRIVER_DONT_SHOW 103

// The About box (AboutBox).
#define IDC_ABOUT_ICON 101

// The System information box (SystemInformationBox).
#define IDC_SYSTEM_TEXT 101
#define IDC_SYSTEM_COPY 102
