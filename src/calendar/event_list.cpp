#include "calendar/event_list.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/regular_file.h"
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

enum class LineKind { kEvent, kComment, kBlank };

// How a list takes a line of its file (at most 1,023 characters read at
// once): a comment when its first character after blanks and control
// characters is ";", blank when it has none, otherwise an event line kept
// up to the first control character after that point; `kept` is the length
// of the line kept, leading blanks included.
LineKind KindOfLine(const char* line, uint32_t* kept) {
  const unsigned char* p = reinterpret_cast<const unsigned char*>(line);
  while (*p && *p < 33) ++p;
  const LineKind kind = *p == ';' ? LineKind::kComment : *p ? LineKind::kEvent : LineKind::kBlank;
  while (*p >= 32) ++p;
  *kept = static_cast<uint32_t>(reinterpret_cast<const char*>(p) - line);
  return kind;
}

// A line of the old file written as it was read, ended if it was not.
bool CopyLine(const char* line, std::FILE* out) {
  const size_t length = std::strlen(line);
  if (std::fputs(line, out) < 0) return false;
  return (length && line[length - 1] == '\n') || std::fputc('\n', out) != EOF;
}

}  // namespace

std::string EventFilePath(const char* name) { return JoinPath(Settings.ApplicationPath, std::string(name) + ".CDF"); }

bool IsPlainListName(const char* name) { return IsPlainFileName(name); }

BlockHandle LoadEventList(const char* name) {
  if (!IsPlainListName(name)) return 0;
  // Only a regular file: a FIFO is not waited on, and a device such as
  // /dev/zero is never read.
  uint64_t size = 0;
  std::FILE* f = OpenRegularFile(EventFilePath(name).c_str(), true, &size);
  if (!f) return 0;
  if (size > static_cast<uint64_t>(kMaxEventFileBytes)) {
    std::fclose(f);
    return 0;
  }
  BlockHandle list = GlobalBlockAlloc(kEmptyListSize);
  uint32_t used = 0;  // bytes of the lines stored so far, NULs included
  char line[kEventLineSize];
  while (list && std::fgets(line, sizeof line, f)) {
    // The stored line starts at the line's first character, leading blanks kept.
    uint32_t length;
    if (KindOfLine(line, &length) == LineKind::kComment) continue;
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

int EventLineMonth(const char* line) {
  for (int month = 0; month < 12; ++month)
    if (CompareNoCase(MonthName(month), line, 3) == 0) return month;
  return -1;
}

bool WriteEventList(const char* name, const std::vector<EventEntry>& entries) {
  if (!IsPlainListName(name)) return false;
  const std::string path = EventFilePath(name);
  const std::string backup = JoinPath(Settings.ApplicationPath, std::string(name) + ".BAK");
  ReplacingFile out(path, true);
  if (!out.file()) return false;
  // The target is a file (or none yet): what the entries do not stand for
  // is carried over from it. One that exists but cannot be read is kept.
  errno = 0;
  std::FILE* old = std::fopen(path.c_str(), "rt");
  if (!old && errno != ENOENT) return false;
  bool ok = true, head = true;
  auto writeEntries = [&] {
    for (const EventEntry& entry : entries) ok = ok && std::fputs(FormatEventLine(entry).c_str(), out.file()) >= 0;
  };
  char line[kEventLineSize];
  while (ok && old && std::fgets(line, sizeof line, old)) {
    uint32_t length;
    const LineKind kind = KindOfLine(line, &length);
    if (head && kind != LineKind::kEvent) {
      ok = CopyLine(line, out.file());  // the file's leading comments and blank lines
      continue;
    }
    if (head) writeEntries();
    head = false;
    // Lines that name no month after the entries; those that do are among them.
    if (kind == LineKind::kEvent && EventLineMonth(std::string(line, length).c_str()) < 0) ok = ok && CopyLine(line, out.file());
  }
  if (old) {
    ok = ok && !std::ferror(old);
    std::fclose(old);
  }
  if (head) writeEntries();
  // The previous list becomes the one backup only when the new one is complete.
  return ok && out.Commit(backup.c_str());
}
