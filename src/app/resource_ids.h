// Numbers shared by the resource script and the program: command ids, string
// table entries, the icon. Plain #defines, as the resource compiler reads this
// file too.
#pragma once
#include "base/manual_ids.h"
#include "print/print_ids.h"

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

// The string table.
#define IDS_INIT_YEAR_FAILED 103
#define IDS_IMAGE_LOAD_FAILED 105
#define IDS_MEMORY_FAILED 106
#define IDS_NO_DEFAULT_PRINTER 107
#define IDS_WRITE_FAILED 108
#define IDS_PRODUCT_NAME 109
#define IDS_READ_FAILED 110
#define IDS_UNSAVED_CHANGES 111
#define IDS_CLIPBOARD_FAILED 132
#define IDS_PALETTE_WARNING 137
#define IDS_CLASS_REGISTRATION_FAILED 138
#define IDS_NO_EVENTS 150
#define IDS_DELETE_EVENT 151
#define IDS_EVENTS_TITLE 152
#define IDS_TIP_OPEN 1701
#define IDS_TIP_SAVE 1702
#define IDS_TIP_EDIT_YEAR 1703
#define IDS_TIP_EDIT_PAGE 1704
#define IDS_TIP_MANUAL 1705
#define IDS_TIP_SETUP 1706
#define IDS_TIP_EXIT 1707

// Controls of the events dialogs (EVENTSBOX, NEWEVENTBOX, EDITEVENTBOX,
// NEWEVENTNAMEBOX).
#define IDC_EVENT_LIST 101
#define IDC_EVENT_NEW 102
#define IDC_EVENT_DELETE 103
#define IDC_EVENT_NEW_NAME 104
#define IDC_EVENT_MONTH 201
#define IDC_EVENT_DAY 202
#define IDC_EVENT_TEXT 203
#define IDC_EVENT_DATE 204
#define IDC_EVENT_LIST_NAME 205

// Controls of the replicate dialog (REPLICATEBOX): the month boxes are
// IDC_REPLICATE_JANUARY + month.
#define IDC_REPLICATE_JANUARY 101
#define IDC_REPLICATE_ALL 113
#define IDC_REPLICATE_NONE 114
#define IDC_REPLICATE_CAPTION 115

// Controls of the display-driver warning (ChangeDriverBox).
#define IDC_DRIVER_ICON 101
#define IDC_DRIVER_TEXT 102
#define IDC_DRIVER_DONT_SHOW 103

// The About box (AboutBox).
#define IDC_ABOUT_ICON 101
