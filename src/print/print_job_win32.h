// The print commands: the whole calendar or some of its pages one to a
// sheet, or the folded booklet printed on both sides of seven sheets.
#pragma once
#include <windows.h>

#include "calendar/calendar_model.h"

// Each returns 1 when the job completed and 0 otherwise: a cancelled dialog
// or "Abort" silently, every failure after its message. `documentName`
// names the job in the spooler (the calendar's file name).
int PrintSingleSided(HWND window, CalendarDocument document, const char* documentName);
int PrintDoubleSided(HWND window, CalendarDocument document, const char* documentName);
