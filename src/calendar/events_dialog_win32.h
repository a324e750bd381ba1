// The events dialog: edits the event list of the month being shown and
// writes it back to its file.
#pragma once
#include <windows.h>

#include "calendar/calendar_model.h"

// Shows EVENTSBOX for the document's current month. True when the list was
// saved (the pages showing it have been reloaded, so the caller repaints).
bool EditEvents(HWND owner, CalendarDocument document);
