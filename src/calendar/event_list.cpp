#include "calendar/event_list.h"

#include <cstdio>
#include <cstring>

#include "base/replace_file.h"
#include "base/text.h"
#include "calendar/calendar_dates.h"
#include "config/settings.h"

namespace {
constexpr int kEventLineSize = 1024;  // lines are read with at most 1,023 characters
constexpr uint32_t kEmptyListSize = 16;

// The first three characters of a month's name, as events files write them.
std::string MonthCode(int month) {
  std::string code(MonthName(month), 0, 3);
  // Names shorter than three letters are padded with zeros on the left, as
  // the program has always written them.
  return std::string(3 - code.size(), '0') + code;
}
}  // namespace

std::string EventFilePath(const char* name) { return JoinPath(Settings.ApplicationPath, std::string(name) + ".CDF"); }

BlockHandle LoadEventList(const char* name) {
  std::FILE* f = std::fopen(EventFilePath(name).c_str(), "rt");
  if (!f) return 0;
  BlockHandle list = GlobalBlockAlloc(kEmptyListSize);
  uint32_t used = 0;  // bytes of the lines stored so far, NULs included
  char line[kEventLineSize];
  while (list && std::fgets(line, sizeof line, f)) {
    const unsigned char* p = reinterpret_cast<unsigned char*>(line);
    while (*p && *p < 33) ++p;
    if (*p == ';') continue;
    while (*p >= 32) ++p;
    // The stored line starts at the line's first character, leading blanks kept.
    uint32_t length = static_cast<uint32_t>(reinterpret_cast<const char*>(p) - line);
    uint32_t need = used + length + 2;  // the line's NUL and the closing empty line
    if (need > GlobalBlockSize(list) && !GlobalBlockReAlloc(list, need)) {
      GlobalBlockFree(list);
      list = 0;
      break;
    }
    BlockLock lock(list);
    std::memcpy(lock.bytes() + used, line, length);
    lock.bytes()[used + length] = 0;
    used += length + 1;
  }
  std::fclose(f);
  return list;
}

int FindEvent(char* out, size_t outSize, BlockHandle list, int month, int dayIndex) {
  if (outSize) out[0] = 0;
  if (!list || month < 0 || month > 11) return 0;
  char key[16];
  std::snprintf(key, sizeof key, "%.3s%.2d", MonthName(month), dayIndex + 1);
  int found = 0;
  ForEachEventLine(list, [&](const char* line) {
    if (found || CompareNoCase(line, key, 5) != 0) return;
    found = 1;
    // The text starts at the seventh character; a shorter line has none.
    size_t length = std::strlen(line);
    CopyText(out, outSize, length > 6 ? line + 6 : "");
  });
  return found;
}

std::string FormatEventLine(const EventEntry& entry) {
  char day[16];
  std::snprintf(day, sizeof day, "%.2d ", entry.day);
  return MonthCode(entry.month) + day + entry.text + "\n";
}

bool WriteEventList(const char* name, const std::vector<EventEntry>& entries) {
  std::string path = EventFilePath(name);
  std::string backup = JoinPath(Settings.ApplicationPath, std::string(name) + ".BAK");
  std::string temporary = path + ".new";
  std::FILE* f = std::fopen(temporary.c_str(), "wt");
  if (!f) return false;
  bool ok = true;
  for (const EventEntry& entry : entries) ok = ok && std::fputs(FormatEventLine(entry).c_str(), f) >= 0;
  ok = (std::fclose(f) == 0) && ok;
  if (!ok) {
    std::remove(temporary.c_str());
    return false;
  }
  std::remove(backup.c_str());
  std::rename(path.c_str(), backup.c_str());  // a list saved for the first time has no file yet
  if (!ReplaceFileWith(temporary.c_str(), path.c_str())) {
    std::rename(backup.c_str(), path.c_str());
    std::remove(temporary.c_str());
    return false;
  }
  return true;
}
