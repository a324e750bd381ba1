// The numbers of picture_dialogs.rc: the part the program adds to the
// system's open dialog when a picture is chosen (plain #defines: the
// resource compiler reads this file too).
#pragma once

#define IDC_PICTURE_PLACEHOLDER 1119
#define IDC_PICTURE_PREVIEW 1500
#define IDC_PICTURE_SHOW_PREVIEW 1501
#define IDC_PICTURE_FACTS 1502

// PaletteWarningBox: the warning about a palette picture, with the icon,
// text and check box ids every warning with a check box has.
#define IDC_PALETTE_ICON 101
#define IDC_PALETTE_TEXT 102
#define IDC_PALETTE_AGAIN 103
