// The month page's property sheet, "Page": five tabs over a working copy of
// the page that reaches the document only through OK.
#pragma once
#include <windows.h>

#include "calendar/records.h"

// Shows the sheet modally over `owner`, opening on the page's
// LastPropertyPage. After OK `page` holds the edited copy (its old blocks
// freed) and the result is true; after Cancel, or when the copy cannot be
// made (message 106), `page` is as it was and the result is false.
bool EditPageProperties(HWND owner, MonthPage* page);
