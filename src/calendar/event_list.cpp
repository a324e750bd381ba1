#include "calendar/event_list.h"

#include <cstdio>
#include <cstring>

#include "base/replace_file.h"
#include "base/text.h"
#include "calendar/calendar_dates.h"
#include "config/plain_name.h"
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

// The size of an open file, or -1.
long FileSize(std::FILE* f) {
  if (std::fseek(f, 0, SEEK_END) != 0) return -1;
  const long size = std::ftell(f);
  return std::fseek(f, 0, SEEK_SET) == 0 ? size : -1;
}
}  // namespace

std::string EventFilePath(const char* name) { return JoinPath(Settings.ApplicationPath, std::string(name) + ".CDF"); }

bool IsPlainListName(const char* name) { return IsPlainFileName(name); }

BlockHandle LoadEventList(const char* name) {
  if (!IsPlainListName(name)) return 0;
  std::FILE* f = std::fopen(EventFilePath(name).c_str(), "rt");
  if (!f) return 0;
  const long size = FileSize(f);
  if (size < 0 || size > kMaxEventFileBytes) {
    std::fclose(f);
    return 0;
  }
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
    // A file that grew past the cap while it was read is refused too.
    const bool tooLong = need > kMaxEventFileBytes + kEmptyListSize;
    if (tooLong || (need > GlobalBlockSize(list) && !GlobalBlockReAlloc(list, need))) {
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
  if (!IsPlainListName(name)) return false;
  const std::string backup = JoinPath(Settings.ApplicationPath, std::string(name) + ".BAK");
  ReplacingFile out(EventFilePath(name), true);
  bool ok = out.file() != nullptr;
  for (const EventEntry& entry : entries) ok = ok && std::fputs(FormatEventLine(entry).c_str(), out.file()) >= 0;
  // The previous list becomes the one backup only when the new one is complete.
  return ok && out.Commit(backup.c_str());
}
