// Numbers of the print dialogs and of the messages the print jobs show,
// shared with the resource script (plain #defines: the resource compiler
// reads this file too).
#pragma once

#define IDS_PAGE_ACCESS_FAILED 104
#define IDS_PRINT_FAILED 112
#define IDS_PRINTER_INIT_FAILED 118
#define IDS_PRINTING 130

// The common print dialog's own templates, replaced by the program's.
#define IDD_PRINT 1538
#define IDD_PRINT_SETUP 1539
// The print dialog's "Face up" check box (double-sided printing).
#define IDC_FACE_UP 101
