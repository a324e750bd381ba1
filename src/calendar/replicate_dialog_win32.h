// The Replicate dialog: copies the design of the month being shown onto the
// months the user ticks.
#pragma once
#include <windows.h>

#include "calendar/calendar_model.h"

// Shows REPLICATEBOX for the document's current month; 1 when months were
// replaced (the caller repaints), 0 when cancelled or when a record could not
// be read or written.
int ReplicateMonth(HWND owner, CalendarDocument document);
