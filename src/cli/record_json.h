// The calendar as one JSON object: {"header": {...}, "pages": [12 objects]},
// every record field under its own name, texts in UTF-8.
#pragma once
#include <cstdio>

#include "calendar/calendar_model.h"

void WriteCalendarJson(std::FILE* out, CalendarDocument document);
