#include "calendar/event_editing.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {
const char kCodeDigits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";

int CodeValue(char c) {
  const char* at = std::strchr(kCodeDigits, c);
  return c && at ? static_cast<int>(at - kCodeDigits) : -1;
}
}  // namespace

std::string EventListCode(const EventEntry& entry) {
  auto digit = [](int v) { return v >= 0 && v < 36 ? kCodeDigits[v] : '0'; };
  return std::string{digit(entry.month), digit(entry.day)} + entry.text;
}

bool EventFromListCode(const std::string& code, EventEntry* entry) {
  if (code.size() < 2 || CodeValue(code[0]) < 0 || CodeValue(code[1]) < 0) return false;
  *entry = {CodeValue(code[0]), CodeValue(code[1]), code.substr(2)};
  return true;
}

std::vector<std::string> EventListCodes(BlockHandle list) {
  std::vector<std::string> codes;
  ForEachEventLine(list, [&](const char* line) {
    const int month = EventLineMonth(line);
    if (month < 0) return;
    // The day is the number from the fourth character on; the text starts at the seventh.
    const int day = std::strlen(line) > 3 ? std::atoi(line + 3) : 0;
    codes.push_back(EventListCode({month, day, std::strlen(line) > 6 ? line + 6 : ""}));
  });
  std::sort(codes.begin(), codes.end());
  codes.erase(std::unique(codes.begin(), codes.end()), codes.end());
  return codes;
}

bool SaveEventList(CalendarDocument document, const char* name, const std::vector<std::string>& codes) {
  std::vector<EventEntry> entries;
  for (const std::string& code : codes) {
    EventEntry entry;
    if (EventFromListCode(code, &entry)) entries.push_back(entry);
  }
  if (!WriteEventList(name, entries)) return false;
  for (int month = 0; month < 12; ++month) {
    MonthPage page;
    if (!GetMonthPage(document, month, &page) || std::strcmp(page.DaysName, name) != 0) continue;
    if (page.Events) GlobalBlockFree(page.Events);
    page.Events = LoadEventList(name);
    PutMonthPage(document, month, &page);
  }
  return true;
}
