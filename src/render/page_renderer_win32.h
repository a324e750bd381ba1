// The program's entry to the page renderers: a page drawn on a device
// context, the screen's or the printer's.
#pragma once
#include <windows.h>

#include "calendar/calendar_model.h"

// Draws page `pageIndex` (0..11 months, 12 the year at a glance, 13 the
// cover) of `document` into `pageRect` (device units) on `dc`. `printing`
// takes pictures from their Dibs and leaves out the screen's page frame;
// the two half flags choose what to draw. Returns 1 when it drew, 0 for an
// index outside 0..13 or a block that is not a calendar. Every GDI object it
// makes is deleted before it returns. `window` is not consulted.
int DrawCalendarPage(HWND window, HDC dc, const RECT* pageRect, CalendarDocument document, int pageIndex,
                     int printing, int drawPictureHalf, int drawCalendarHalf);
