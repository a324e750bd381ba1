// Named lists of dated events, each kept in its own text file "<name>.CDF"
// in the program's folder. A line is the month name's first three letters,
// the day as two digits, one separator and the text: "JAN05 Party".
#pragma once
#include <cstddef>
#include <string>
#include <vector>

#include "base/global_block.h"

// The events file of list `name`: ApplicationPath, name, ".CDF".
std::string EventFilePath(const char* name);

// The largest events file loaded. A real list is a few kilobytes; a larger
// file loads no list (it is read once for every month page that names it).
constexpr long kMaxEventFileBytes = 1 << 20;

// True for a name that is a plain file name in the program's folder
// (IsPlainFileName): a list name comes from calendar files, so it is refused
// when it could reach anywhere else or a device.
bool IsPlainListName(const char* name);

// Loads the list into a block of consecutive NUL-terminated lines ended by an
// empty one; 0 when the name is not a plain list name, the file cannot be
// opened or is larger than kMaxEventFileBytes, or memory runs out. A file
// without event lines gives a valid, empty list.
BlockHandle LoadEventList(const char* name);

// The text of the first event of day `dayIndex` + 1 of `month` (0..11) in
// `list`; 1 with the text in `out`, or 0 with `out` empty.
int FindEvent(char* out, size_t outSize, BlockHandle list, int month, int dayIndex);

// Calls `visit` for every line of the list, in file order.
template <class Visit>
void ForEachEventLine(BlockHandle list, Visit visit);

struct EventEntry {
  int month;  // 0..11
  int day;    // 1..31
  std::string text;
};

// One line of an events file as the program writes it.
std::string FormatEventLine(const EventEntry& entry);

// The month (0..11) whose name's first three characters begin `line`, without
// regard to case; -1 when none does. Only such lines are entries of the
// events dialog; the first month that matches counts.
int EventLineMonth(const char* line);

// Writes list `name`: the previous ".BAK" is deleted, the current file becomes
// the new ".BAK", and the entries are written in order. The entries stand for
// the current file's event lines that name a month; nothing else of it is
// lost: its leading comment and blank lines stay at the head of the new
// file, and its lines that name no month (written with other month names, or
// indented) follow the entries, each as it stood. Other comments and blank
// lines are dropped. The new file is written in full and flushed before
// anything is renamed, so a failed write, or a current file that cannot be
// read, leaves both old files as they were. False on failure, and for a name
// that is not a plain list name (nothing is written then).
bool WriteEventList(const char* name, const std::vector<EventEntry>& entries);

#include "calendar/event_list_inl.h"
