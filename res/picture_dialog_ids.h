// The numbers of picture_dialogs.rc: the part the program adds to the
// system's open dialog when a picture is chosen (plain #defines: the
// resource compiler reads this file too).
#pragma once

#define IDC_PICTURE_PLACEHOLDER 1119
#define IDC_PICTURE_PREVIEW 1500
#define IDC_PICTURE_SHOW_PREVIEW 1501
#define IDC_PICTURE_FACTS 1502

// CropPicture: the picture with the frame the user moves and resizes, what
// the frame keeps, and the button that makes it as large as it can be.
#define IDC_CROP_AREA 1510
#define IDC_CROP_KEEPS 1511
#define IDC_CROP_WHOLE 1512

// PaletteWarningBox: the warning about a palette picture, with the icon,
// text and check box ids every warning with a check box has.
#define IDC_PALETTE_ICON 101
#define IDC_PALETTE_TEXT 102
#define IDC_PALETTE_AGAIN 103
