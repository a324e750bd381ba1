// Drawing the fourteen pages of a calendar: months 0..11, the year at a
// glance (12) and the cover (13). The same code draws the screen at every
// zoom and the printer; every size comes from the page rectangle and the
// percentages in the records, in integer arithmetic truncating toward zero.
// Each page has two halves that can be drawn alone, for double-sided printing.
#pragma once
#include "base/geometry.h"
#include "calendar/calendar_model.h"
#include "render/canvas.h"

// Draws page `pageIndex` into `pageRect` (device units). `printing` selects
// the printer path for pictures and leaves out the screen's page frame.
// Returns 1 when it drew, 0 for an index outside 0..13 or a block that is not
// a calendar or a page rectangle beyond +-2^29. Nothing is written back into
// the document.
int DrawCalendarPage(Canvas& canvas, const Rect& pageRect, CalendarDocument document, int pageIndex, bool printing,
                     bool drawPictureHalf, bool drawCalendarHalf);
int DrawYearPage(Canvas& canvas, const Rect& pageRect, CalendarDocument document, bool printing, bool drawUpperHalf,
                 bool drawLowerHalf);
int DrawCoverPage(Canvas& canvas, const Rect& pageRect, CalendarDocument document, bool printing, bool drawUpperHalf,
                  bool drawLowerHalf);

// For print with a bleed: what of a page runs on past its edges, drawn only in
// the band `bleed` units wide round `pageRect` and never inside it, so the
// page drawn afterwards is the same as without a bleed. The band takes the
// background of each half asked for (the halves meet at half the page's
// height, where the page's own fills meet on a page at the device's origin)
// and, on the cover, a picture that bleeds. 0 where DrawCalendarPage draws
// nothing.
int DrawPageBleed(Canvas& canvas, const Rect& pageRect, CalendarDocument document, int pageIndex, bool drawUpperHalf,
                  bool drawLowerHalf, int32_t bleed);
