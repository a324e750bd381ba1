// The calendar as one JSON object: {"header": {...}, "pages": [12 objects],
// "printResolution": {...}}, every record field under its own name, texts in
// UTF-8, and the resolution each page's picture prints at on `paper`.
#pragma once
#include <cstdio>
#include <string>

#include "calendar/calendar_model.h"

struct Paper;
void WriteCalendarJson(std::FILE* out, CalendarDocument document, const Paper& paper);
