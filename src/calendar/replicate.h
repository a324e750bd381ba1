// Copying one month's whole design onto other months of the same calendar.
#pragma once
#include "calendar/calendar_model.h"

// Replaces every month i with targets[i] set (the source month itself is
// never a target) by a full copy of month `source`: captions, fonts, colours,
// placements, its own copy of the picture and of the event list. Then sets
// the calendar's Changed flag. False when a record cannot be read or written;
// months already replaced stay replaced.
bool ReplicateMonth(CalendarDocument document, int source, const bool targets[12]);
