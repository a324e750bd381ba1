// The numbers of print_dialogs.rc: the common print dialog's templates the
// program replaces and its own controls (plain #defines: the resource
// compiler reads this file too).
#pragma once
#include "res/string_ids.h"

// The common print dialog's own templates, replaced by the program's.
#define IDD_PRINT 1538
#define IDD_PRINT_SETUP 1539
// The print dialog's "Face up" check box (double-sided printing).
#define IDC_FACE_UP 101
