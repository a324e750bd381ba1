// The numbers of page_sheet.rc: the five tabs of the month page's property
// sheet (plain #defines: the resource compiler reads this file too). A
// number's up-down is its edit's number + 10000 and holds "min,max,pos".
#pragma once

// "PagePropertyOne", the heading.
#define IDC_HEAD_FONT 115
#define IDC_HEAD_SAMPLE 129
#define IDC_HEAD_COLOUR 116
#define IDC_HEAD_LEFT 117
#define IDC_HEAD_CENTRE 118
#define IDC_HEAD_RIGHT 119
#define IDC_HEAD_LEFT_GLYPH 120
#define IDC_HEAD_CENTRE_GLYPH 121
#define IDC_HEAD_RIGHT_GLYPH 122
#define IDC_HEAD_PREV_NEXT 123
#define IDC_HEAD_SHADOW 131
#define IDC_HEAD_FRAME 134
#define IDC_HEAD_BACKGROUND 133
#define IDC_HEAD_INTERIOR 135
#define IDC_HEAD_EXTERIOR 136
#define IDC_DATE_ROUND 165
#define IDC_DATE_SHADOW_OFFSET 166

// "PagePropertyTwo", the date cells.
#define IDC_DATE_FONT 102
#define IDC_DATE_COLOUR 103
#define IDC_DATE_SAMPLE 104
#define IDC_DATE_TOP_LEFT 105
#define IDC_DATE_TOP_RIGHT 106
#define IDC_DATE_BOTTOM_LEFT 107
#define IDC_DATE_BOTTOM_RIGHT 108
#define IDC_DATE_CENTRE 109
#define IDC_DATE_FRAME 110
#define IDC_DATE_BACKGROUND 111
#define IDC_DATE_INTERIOR 112
#define IDC_DATE_SHADOW 130

// "PagePropertyThree", the events in the cells.
#define IDC_DAYS_SHOW 124
#define IDC_DAYS_FONT 125
#define IDC_DAYS_COLOUR 126
#define IDC_DAYS_SAMPLE 132
#define IDC_DAYS_LIST 127

// "PagePropertyFour", the picture: its other numbers are those of every
// picture tab.
#include "res/picture_tab_ids.h"
#define IDC_PICTURE_PAINT 164

// "PagePropertyFive", the captions and the page.
#define IDC_CAP_FONT 151
#define IDC_CAP_SAMPLE 152
#define IDC_CAP_COLOUR 153
#define IDC_CAP_LEFT 154
#define IDC_CAP_CENTRE 155
#define IDC_CAP_RIGHT 156
#define IDC_CAP_LEFT_GLYPH 157
#define IDC_CAP_CENTRE_GLYPH 158
#define IDC_CAP_RIGHT_GLYPH 159
#define IDC_CAP_LEFT_TEXT 140
#define IDC_CAP_RIGHT_TEXT 160
#define IDC_PAGE_BACKGROUND 128
#define IDC_PAGE_MARGIN 162
