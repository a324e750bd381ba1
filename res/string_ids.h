// The numbers of the string table's texts, shared by the resource scripts
// and the code of every layer (plain #defines: the resource compiler reads
// this file too).
#pragma once

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
// The print jobs.
#define IDS_PAGE_ACCESS_FAILED 104
#define IDS_PRINT_FAILED 112
#define IDS_PRINTER_INIT_FAILED 118
#define IDS_PRINTING 130
// The manual's launch.
#define IDS_MANUAL_NO_BROWSER 160
#define IDS_MANUAL_MISSING 161
// The page sheet's "Paint" without a paint program.
#define IDS_NO_PAINT_PROGRAM 162
// Pictures the import cannot take: a dropped file that is no picture, a
// picture with too many pixels.
#define IDS_NOT_A_PICTURE 163
#define IDS_PICTURE_TOO_LARGE 164
// A calendar whose pictures together are more than a calendar file may hold.
#define IDS_PICTURES_TOO_LARGE 165
// Saving over a calendar file another program changed since it was opened
// or saved; a folder in which no new file may be made.
#define IDS_FILE_CHANGED_ON_DISK 166
#define IDS_FOLDER_REFUSES 167
// A picture dropped on the year page.
#define IDS_YEAR_HAS_NO_PICTURE 168
// How sharp a picture tab's picture prints on the printer's page (the
// second %s says which page when there is no printer), and what the crop
// dialog keeps of the picture.
#define IDS_PRINTS_AT 169
// The colour dialog's questions.
#define IDS_COLOUR_EXISTS 170
#define IDS_COLOUR_DELETE 171
#define IDS_PRINTS_BLURRY 172
#define IDS_PRINTS_WITHOUT_PRINTER 173
#define IDS_CROP_KEEPS 174
