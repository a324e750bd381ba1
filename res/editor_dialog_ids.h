// The numbers of editor_dialogs.rc: the choosers the editors open (plain
// #defines: the resource compiler reads this file too).
#pragma once
#include "res/string_ids.h"

// FontBox. 105 and 106 are commands the box posts itself when the family or
// the style changes.
#define IDC_FONT_SIZE 101
#define IDC_FONT_SAMPLE 102
#define IDC_FONT_STYLE 103
#define IDC_FONT_FAMILY 104
#define IDC_FONT_FAMILY_CHANGED 105
#define IDC_FONT_STYLE_CHANGED 106
