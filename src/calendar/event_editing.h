// The events dialog's list: every event of a list for the whole year, kept
// sorted by month, day and text, and written back to the list's file.
#pragma once
#include <string>
#include <vector>

#include "calendar/calendar_model.h"
#include "calendar/event_list.h"

// An entry as the dialog's sorted list holds it: the month and the day each
// as one character of "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ", then the text,
// so that sorting orders by month, then day, then text.
std::string EventListCode(const EventEntry& entry);
// The entry a code stands for; false for a code too short to hold one.
bool EventFromListCode(const std::string& code, EventEntry* entry);

// The events of `list` as dialog codes, sorted, without repeats. A line whose
// first three characters name no month (EventLineMonth) is left out; writing
// the list keeps it in the file.
std::vector<std::string> EventListCodes(BlockHandle list);

// Writes the entries (as codes, in order) as list `name` with its backup,
// then gives every month of the document that shows this list a freshly
// loaded copy of it. False when the file cannot be written.
bool SaveEventList(CalendarDocument document, const char* name, const std::vector<std::string>& codes);
