// The numbers of year_sheet.rc: the two tabs of the year's property sheet
// (plain #defines: the resource compiler reads this file too). A number's
// up-down is its edit's number + 10000 and holds "min,max,pos".
#pragma once

// "YearPropertyOne", the year and the year at a glance.
#define IDC_YEAR_CURRENT 101
#define IDC_YEAR_IN_PAGES 102
#define IDC_YEAR_NUMBER 103
#define IDC_YEAR_ERA 104
#define IDC_YAG_PAGE 106
#define IDC_YAG_ROUND 107
#define IDC_YAG_EXTERIOR 108
#define IDC_YAG_INTERIOR 109
#define IDC_YAG_BACKGROUND 110
#define IDC_YAG_SHADOW 111
#define IDC_YAG_DATE_SAMPLE 112
#define IDC_YAG_DATE_COLOUR 113
#define IDC_YAG_DATE_FONT 114
#define IDC_YAG_TITLE_SAMPLE 115
#define IDC_YAG_TITLE_COLOUR 116
#define IDC_YAG_TITLE_FONT 117
#define IDC_YAG_FRAME 118
#define IDC_YAG_GUTTER 119
#define IDC_YAG_MARGIN 120
#define IDC_YAG_SHADOW_OFFSET 121

// "YearPropertyTwo", the cover: its picture has the numbers of every
// picture tab.
#include "res/picture_tab_ids.h"
#define IDC_COVER_PAINT 151
#define IDC_COVER_TITLE_FONT 152
#define IDC_COVER_TITLE 153
#define IDC_COVER_BLEED 154
#define IDC_COVER_TITLE_LEFT 155
#define IDC_COVER_TITLE_CENTRE 156
#define IDC_COVER_TITLE_RIGHT 157
#define IDC_COVER_TITLE_LEFT_GLYPH 158
#define IDC_COVER_TITLE_CENTRE_GLYPH 159
#define IDC_COVER_TITLE_RIGHT_GLYPH 160
#define IDC_COVER_TITLE_SAMPLE 161
#define IDC_COVER_TITLE_COLOUR 162
#define IDC_COVER_BACKGROUND 164
