// The calendar's file on the main window: New, Open, Save and Save as, the
// question about unsaved changes, and the check that a save does not replace
// a file another program changed.
#pragma once
#include <windows.h>

#include <string>

// Message 111 when the calendar has changed; Yes saves it first.
void CheckUnsavedChanges(HWND window);
void NewCalendar(HWND window);
// Open: the calendar queued, else the one the user picks.
void OpenCalendar(HWND window);
// The next Open takes `path` instead of asking (a drop, a recent file, the
// command line).
void QueueCalendarToOpen(const std::string& path);
// Save: an untitled calendar is saved under a new name.
void SaveCalendarCommand(HWND window);
// Save as: only a new name goes on the recent-files list; Open adds nothing.
void SaveCalendarAs(HWND window);
