// The year's property sheet, "Year": the year and its page at a glance, and
// the cover, over a working copy of the calendar's header that reaches the
// document only through OK.
#pragma once
#include <windows.h>

#include "calendar/records.h"

// Shows the sheet modally over `owner`, opening on LastYearPropertyPage.
// After OK `header` holds the edited copy (its old cover picture freed) and
// the result is true; after Cancel, or when the copy cannot be made
// (message 106), `header` is as it was and the result is false.
bool EditYearProperties(HWND owner, CalendarHeader* header);
