// quernal-cli events: holidays from iCalendar files into events files, and
// what an events file shows on each day.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "base/regular_file.h"
#include "base/replace_file.h"
#include "base/text.h"
#include "calendar/calendar_dates.h"
#include "calendar/event_list.h"
#include "cli/commands.h"
#include "cli/ical_import.h"
#include "cli/locale_names.h"
#include "config/settings.h"

namespace {

// iCalendar files people download are a few hundred kilobytes at most.
constexpr long kMaxIcsBytes = 16L << 20;

// An events file given as a path: its folder and the list name the
// program knows it by.
struct ListFile {
  std::string folder;
  std::string name;
};

// The program finds a list NAME only as the file "NAME.CDF" in its folder.
bool SplitListFile(const std::string& path, ListFile* file) {
  const std::string fileName = FileNamePart(path.c_str());
  const size_t dot = fileName.size() < 4 ? std::string::npos : fileName.size() - 4;
  if (dot == std::string::npos || fileName.compare(dot, 4, ".CDF") != 0) return false;
  file->name = fileName.substr(0, dot);
  file->folder = path.substr(0, path.size() - fileName.size());
  if (file->folder.empty()) file->folder = ".";
  return IsPlainListName(file->name.c_str());
}

bool ReadYear(const Arguments& args, int* year, int* status) {
  *year = Today().year;
  if (args.Has("--year") && !ParseInt(args.options.at("--year"), 1583, 2583, year)) {
    *status = Usage("--year takes a year from 1583 to 2583");
    return false;
  }
  return true;
}

bool ReadIcsFile(const std::string& path, std::string* bytes) {
  errno = 0;
  const FileBytes file = ReadWholeFile(path.c_str(), kMaxIcsBytes);
  switch (file.problem) {
    case WholeFileProblem::kNone: bytes->assign(reinterpret_cast<const char*>(file.data.get()), file.size); return true;
    case WholeFileProblem::kCannotOpen:
      std::fprintf(stderr, "quernal-cli: %s: %s\n", path.c_str(), errno ? std::strerror(errno) : "not a regular file");
      return false;
    case WholeFileProblem::kTooLarge:
      std::fprintf(stderr, "quernal-cli: %s: larger than an iCalendar file of events can be (16 MiB)\n", path.c_str());
      return false;
    default: std::fprintf(stderr, "quernal-cli: %s: the file cannot be read\n", path.c_str()); return false;
  }
}

// Months whose names start alike cannot be told apart in an events file;
// the program shows the events of one on the other too.
void WarnAboutAlikeMonths() {
  for (int a = 0; a < 12; ++a)
    for (int b = a + 1; b < 12; ++b)
      if (CompareNoCase(MonthName(a), MonthName(b), 3) == 0)
        std::fprintf(stderr, "quernal-cli: %s and %s start with the same three letters: the program shows the "
                     "events of each on the other's days too\n",
                     Cp1252ToUtf8(MonthName(a)).c_str(), Cp1252ToUtf8(MonthName(b)).c_str());
}

// The days as lines of an events file, in date order and, within a day, in
// the file's order. Says on stderr once per event what it cannot take as it is.
std::vector<EventEntry> EventEntries(const std::string& ics, const std::vector<IcalDay>& days) {
  std::vector<EventEntry> entries;
  std::set<int> told;  // events already spoken of, by line
  for (const IcalDay& day : days) {
    std::string text;
    const bool exact = Utf8ToCp1252(day.text, &text);
    if (!exact && told.insert(day.line).second)
      std::fprintf(stderr, "quernal-cli: %s: line %d: \"%s\" has characters Windows-1252 lacks; written as '?'\n",
                   ics.c_str(), day.line, day.text.c_str());
    if (day.text.empty()) {
      if (told.insert(day.line).second)
        std::fprintf(stderr, "quernal-cli: %s: line %d: an event without SUMMARY is left out\n", ics.c_str(), day.line);
      continue;
    }
    if (text.size() > kMaxIcalText) text.resize(kMaxIcalText);  // a malformed sequence gives a '?' per byte
    entries.push_back({day.month, day.day, text});
  }
  std::stable_sort(entries.begin(), entries.end(), [](const EventEntry& a, const EventEntry& b) {
    return a.month != b.month ? a.month < b.month : a.day < b.day;
  });
  return entries;
}

// The file in full or not at all; the list it replaces is kept as NAME.BAK,
// as the program keeps it when it saves a list.
bool WriteListFile(const ListFile& list, const std::string& heading, const std::vector<EventEntry>& entries) {
  std::string contents = heading;
  for (const EventEntry& entry : entries) contents += FormatEventLine(entry);
  if (static_cast<long>(contents.size()) > kMaxEventFileBytes) {
    std::fprintf(stderr, "quernal-cli: %zu events make a list larger than the program reads (1 MiB)\n",
                 entries.size());
    return false;
  }
  const std::string path = JoinPath(list.folder, list.name + ".CDF");
  ReplacingFile out(path, true);
  if (out.file() && std::fputs(contents.c_str(), out.file()) >= 0 &&
      out.Commit(JoinPath(list.folder, list.name + ".BAK").c_str()))
    return true;
  const WriteProblem problem = LastWriteProblem();
  if (problem == WriteProblem::kNone || problem == WriteProblem::kWriteFailed)
    std::fprintf(stderr, "quernal-cli: %s: cannot be written: %s\n", path.c_str(), std::strerror(errno));
  else
    std::fprintf(stderr, "quernal-cli: %s: %s; nothing was written\n", path.c_str(), WriteProblemText(problem));
  return false;
}

int ImportEvents(const Arguments& args) {
  ListFile list;
  int year = 0, status = 0;
  if (args.positional.size() != 2 || !args.Has("-o") || !args.Has("--year"))
    return Usage("events import needs FILE.ics, --year Y and -o NAME.CDF");
  if (!SplitListFile(args.options.at("-o"), &list))
    return Usage("-o takes NAME.CDF, NAME a plain file name: the file the program finds the list NAME in");
  if (!ReadYear(args, &year, &status)) return status;
  if ((status = ApplyLocaleOption(args)) != -1) return status;
  WarnAboutAlikeMonths();

  const std::string& ics = args.positional[1];
  std::string bytes;
  if (!ReadIcsFile(ics, &bytes)) return 1;
  std::vector<IcalDay> days;
  IcalProblem problem;
  if (!IcalendarDaysOfYear(bytes, year, &days, &problem)) {
    if (problem.line)
      std::fprintf(stderr, "quernal-cli: %s: line %d: %s\n", ics.c_str(), problem.line, problem.message.c_str());
    else
      std::fprintf(stderr, "quernal-cli: %s: %s\n", ics.c_str(), problem.message.c_str());
    return 1;
  }
  const std::vector<EventEntry> entries = EventEntries(ics, days);
  std::string source;
  Utf8ToCp1252(FileNamePart(ics.c_str()), &source);
  for (char& c : source)
    if (static_cast<unsigned char>(c) < 32) c = ' ';  // the heading stays one comment line
  const std::string heading = "; the events of " + std::to_string(year) + " in " + source + "\n";
  if (!WriteListFile(list, heading, entries)) return 1;
  std::printf("%s: %zu events of %d\n", args.options.at("-o").c_str(), entries.size(), year);
  return 0;
}

int ListEvents(const Arguments& args) {
  ListFile list;
  int year = 0, status = 0;
  if (args.positional.size() != 2 || args.Has("-o")) return Usage("events list needs one NAME.CDF");
  if (!SplitListFile(args.positional[1], &list))
    return Usage("events list reads NAME.CDF, NAME a plain file name, as the program names its lists");
  if (!ReadYear(args, &year, &status)) return status;
  if ((status = ApplyLocaleOption(args)) != -1) return status;
  if (list.folder.size() >= sizeof Settings.ApplicationPath) return Usage("the events file's folder name is too long");

  CopyText(Settings.ApplicationPath, sizeof Settings.ApplicationPath, list.folder.c_str());
  BlockHandle events = LoadEventList(list.name.c_str());
  if (!events) {
    std::FILE* probe = OpenRegularFile(EventFilePath(list.name.c_str()).c_str(), false);
    std::fprintf(stderr, "quernal-cli: %s: %s\n", args.positional[1].c_str(),
                 probe ? "the program cannot load it (larger than 1 MiB?)" : std::strerror(errno));
    if (probe) std::fclose(probe);
    return 1;
  }
  for (int month = 0; month < 12; ++month)
    for (int day = 0; day < MonthLength(year, month); ++day) {
      char text[1024];
      if (FindEvent(text, sizeof text, events, month, day))
        std::printf("%04d-%02d-%02d%s%s\n", year, month + 1, day + 1, *text ? " " : "", Cp1252ToUtf8(text).c_str());
    }
  GlobalBlockFree(events);
  return 0;
}

}  // namespace

int EventsCommand(const Arguments& args) {
  const std::string action = args.positional.empty() ? "" : args.positional[0];
  if (action == "import") return ImportEvents(args);
  if (action == "list") return ListEvents(args);
  return Usage("events needs import or list");
}
