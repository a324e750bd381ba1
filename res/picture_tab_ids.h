// The numbers every tab with a picture gives its picture's controls, read
// by page_sheet.rc, year_sheet.rc and the code alike (plain #defines: the
// resource compiler reads this file too). "Paint" has a number of each
// sheet's own; the cover has no shadow softness.
#pragma once

#define IDC_PICTURE_SHOW 137
#define IDC_PICTURE_SELECT 138
#define IDC_PICTURE_SAMPLE 139
#define IDC_PICTURE_FRAME 141
#define IDC_PICTURE_SHOW_FRAME 142
#define IDC_PICTURE_TOP_LEFT 143
#define IDC_PICTURE_TOP_RIGHT 144
#define IDC_PICTURE_BOTTOM_LEFT 145
#define IDC_PICTURE_BOTTOM_RIGHT 146
#define IDC_PICTURE_CENTRE 147
#define IDC_PICTURE_SHADOW 148
#define IDC_PICTURE_SHADOW_OFFSET 149
#define IDC_PICTURE_EXTERIOR 150
#define IDC_PICTURE_GUTTER 163
#define IDC_PICTURE_SOFTNESS 167
#define IDC_PICTURE_CROP 168
#define IDC_PICTURE_PRINT 169
