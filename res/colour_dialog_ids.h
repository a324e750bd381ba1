// The numbers of colour_dialogs.rc: the colour dialog (the system's colour
// chooser in a template of the program's own, with a named colour table
// beside it) and its two boxes (plain #defines: the resource compiler reads
// this file too).
#pragma once
#include "res/string_ids.h"

// COMMONColourSelectBox, beside the system chooser's own ids (colordlg.h).
#define IDC_COLOUR_OPEN 101
#define IDC_COLOUR_PREVIEW 107
#define IDC_COLOUR_LIST 108
#define IDC_COLOUR_ADD 109
#define IDC_COLOUR_DELETE 110
#define IDC_COLOUR_RED_ARROWS 204
#define IDC_COLOUR_GREEN_ARROWS 205
#define IDC_COLOUR_BLUE_ARROWS 206
#define IDC_COLOUR_HUE_ARROWS 207
#define IDC_COLOUR_SAT_ARROWS 208
#define IDC_COLOUR_LUM_ARROWS 209
// The hexadecimal labels beside the red, green and blue edits: edit + 15000.
#define IDC_COLOUR_HEX_OFFSET 15000

// COMMONAddColourBox
#define IDC_ADD_COLOUR_NAME 101
#define IDC_ADD_COLOUR_RED 102
#define IDC_ADD_COLOUR_GREEN 103
#define IDC_ADD_COLOUR_BLUE 104
#define IDC_ADD_COLOUR_SWATCH 105

// COMMONOpenColourTableBox
#define IDC_OPEN_TABLE_NAMES 101
