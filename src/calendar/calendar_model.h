// The one open calendar: a GlobalBlock holding a CalendarHeader followed by
// twelve MonthPage records, and the rules by which new calendars take their
// design from the settings and edited pages give theirs back.
#pragma once
#include "base/global_block.h"
#include "calendar/records.h"

using CalendarDocument = BlockHandle;

// A new calendar for `year` opening on `currentPage`, built from the current
// settings; 0 when memory runs out.
CalendarDocument CreateCalendar(int year, int currentPage);
// Fills a month record from the settings and loads its event list.
void InitMonthPage(MonthPage* page);

// The settings become the design of `page` / of the year and cover pages, the
// defaults of every later new calendar.
void StoreMonthPageAsDefaults(const MonthPage* page);
void StoreHeaderAsDefaults(const CalendarHeader* header);

// Frees the record's blocks and zeroes it.
void FreeMonthPage(MonthPage* page);
void FreeHeader(CalendarHeader* header);
// Copies `src` into `dst` with duplicates of its blocks. On failure `dst` is
// left freed and zeroed, never sharing a block with `src`.
bool CopyMonthPage(MonthPage* dst, const MonthPage* src);
bool CopyHeader(CalendarHeader* dst, const CalendarHeader* src);

// Frees every block of the document and the document itself; false for a
// handle that is not a calendar.
bool FreeCalendar(CalendarDocument document);

// Today's year when UseCurrentYear is set, else Year.
int CalendarYear(const CalendarHeader* header);

// Copy the header / month record `month` (0..11) out of or into the document.
// The bytes move as they are: handles are not duplicated. False on a wrong
// magic or a month outside 0..11.
bool GetHeader(CalendarDocument document, CalendarHeader* out);
bool PutHeader(CalendarDocument document, const CalendarHeader* in);
bool GetMonthPage(CalendarDocument document, int month, MonthPage* out);
bool PutMonthPage(CalendarDocument document, int month, const MonthPage* in);

// Terminates every text field, so a record read from a damaged file can be
// handed to code that expects C strings.
void TerminateTexts(CalendarHeader* header);
void TerminateTexts(MonthPage* page);
