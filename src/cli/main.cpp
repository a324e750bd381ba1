// quernal-cli: the calendar files and settings of Quernal from the command line.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <string>
#include <vector>

#include "base/dib.h"
#include "calendar/calendar_dates.h"
#include "calendar/calendar_file.h"
#include "calendar/calendar_model.h"
#include "calendar/event_list.h"
#include "cli/record_json.h"
#include "config/settings.h"
#include "config/settings_file.h"

namespace {

const char kUsage[] =
    "usage:\n"
    "  quernal-cli new [--year Y] [--month M] [--config DIR] -o FILE.CLN\n"
    "  quernal-cli info FILE.CLN [--app-dir DIR]\n"
    "  quernal-cli summary FILE.CLN [--app-dir DIR]\n"
    "  quernal-cli resave IN.CLN -o OUT.CLN [--level 1-9] [--app-dir DIR]\n"
    "  quernal-cli settings [--ini FILE]\n";

// Loading without anybody to ask: a damaged picture is dropped, as if the
// question had been answered Yes, and said on stderr.
class CliProgress : public FileProgress {
 public:
  explicit CliProgress(const std::string& path) : path_(path) {}
  void Begin(const char*) override {}
  void Advance(int, int) override {}
  void End() override {}
  bool AskYesNo(const char*) override {
    std::fprintf(stderr, "quernal-cli: %s: a damaged picture was skipped\n", path_.c_str());
    return true;
  }

 private:
  std::string path_;
};

struct Arguments {
  std::vector<std::string> positional;
  std::map<std::string, std::string> options;
};

int Usage(const char* problem) {
  if (problem) std::fprintf(stderr, "quernal-cli: %s\n", problem);
  std::fputs(kUsage, stderr);
  return 2;
}

// Splits argv into positional arguments and the options `known` allows.
bool Parse(int argc, char** argv, const std::vector<std::string>& known, Arguments* out, std::string* problem) {
  for (int i = 2; i < argc; ++i) {
    std::string arg = argv[i];
    if (arg.size() > 1 && arg[0] == '-') {
      bool ok = false;
      for (const std::string& k : known) ok = ok || k == arg;
      if (!ok) {
        *problem = "unknown option " + arg;
        return false;
      }
      if (i + 1 >= argc) {
        *problem = arg + " needs a value";
        return false;
      }
      out->options[arg] = argv[++i];
    } else {
      out->positional.push_back(arg);
    }
  }
  return true;
}

bool ParseInt(const std::string& text, long low, long high, int* value) {
  errno = 0;
  char* end = nullptr;
  long v = std::strtol(text.c_str(), &end, 10);
  if (text.empty() || *end || errno || v < low || v > high) return false;
  *value = static_cast<int>(v);
  return true;
}

void SetApplicationPath(const Arguments& args) {
  auto it = args.options.find("--app-dir");
  std::snprintf(Settings.ApplicationPath, sizeof Settings.ApplicationPath, "%s",
                it == args.options.end() ? "." : it->second.c_str());
}

CalendarDocument Load(const std::string& path) {
  CliProgress progress(path);
  CalendarDocument document = LoadCalendar(&progress, path.c_str());
  if (!document) std::fprintf(stderr, "quernal-cli: %s: %s\n", path.c_str(), kLoadFailedMessage);
  return document;
}

int Save(const std::string& path, CalendarDocument document) {
  SilentProgress progress;
  if (SaveCalendar(&progress, path.c_str(), document)) return 0;
  std::fprintf(stderr, "quernal-cli: %s: %s\n", path.c_str(), kSaveFailedMessage);
  return 1;
}

int New(const Arguments& args) {
  if (!args.positional.empty() || !args.options.count("-o")) return Usage("new needs -o FILE.CLN and no other file");
  CalendarDate today = Today();
  int year = today.year, month = today.month;
  if (args.options.count("--year") && !ParseInt(args.options.at("--year"), 1583, 2583, &year))
    return Usage("--year takes a year from 1583 to 2583");
  if (args.options.count("--month") && !ParseInt(args.options.at("--month"), 1, 12, &month))
    return Usage("--month takes a month from 1 to 12");
  if (args.options.count("--config")) {
    SetConfigFolder(args.options.at("--config").c_str());
    LoadSettings();
  }
  // As at start-up, the program's folder is not taken from the settings file.
  std::snprintf(Settings.ApplicationPath, sizeof Settings.ApplicationPath, ".");
  CalendarDocument document = CreateCalendar(year, month - 1);
  if (!document) {
    std::fprintf(stderr, "quernal-cli: There has been an error initializing the year.\n");
    return 1;
  }
  int result = Save(args.options.at("-o"), document);
  FreeCalendar(document);
  return result;
}

int Info(const Arguments& args) {
  if (args.positional.size() != 1) return Usage("info needs one FILE.CLN");
  SetApplicationPath(args);
  CalendarDocument document = Load(args.positional[0]);
  if (!document) return 1;
  WriteCalendarJson(stdout, document);
  FreeCalendar(document);
  return 0;
}

// A few lines for people: the year, the page it opens on, pictures and events.
int Summary(const Arguments& args) {
  if (args.positional.size() != 1) return Usage("summary needs one FILE.CLN");
  SetApplicationPath(args);
  CalendarDocument document = Load(args.positional[0]);
  if (!document) return 1;
  CalendarHeader header;
  GetHeader(document, &header);
  int year = CalendarYear(&header);
  std::printf("%s: a Quernal calendar for %d, opening on the page \"%s\"\n", args.positional[0].c_str(), year,
              PageName(header.CurrentPage));
  std::printf("  cover: %s\n", header.CoverPicture ? "with a picture" : "no picture");
  for (int month = 0; month < 12; ++month) {
    MonthPage page;
    GetMonthPage(document, month, &page);
    int events = 0;
    for (int day = 0; day < MonthLength(year, month); ++day) {
      char text[1024];
      events += FindEvent(text, sizeof text, page.Events, month, day);
    }
    std::string picture = "no picture";
    if (BlockLock lock{page.Picture}) {
      const BitmapInfoHeader* h = lock.as<BitmapInfoHeader>();
      picture = std::to_string(h->biWidth) + " x " + std::to_string(h->biHeight) + " picture";
    }
    std::printf("  %-10s %s, events \"%s\": %s\n", MonthName(month), picture.c_str(), page.DaysName,
                page.Events ? (std::to_string(events) + " this month").c_str() : "list not found");
  }
  FreeCalendar(document);
  return 0;
}

int Resave(const Arguments& args) {
  if (args.positional.size() != 1 || !args.options.count("-o")) return Usage("resave needs IN.CLN and -o OUT.CLN");
  int level = static_cast<int>(Settings.ImageCompression);
  if (args.options.count("--level") && !ParseInt(args.options.at("--level"), 1, 9, &level))
    return Usage("--level takes a compression level from 1 to 9");
  Settings.ImageCompression = static_cast<uint32_t>(level);
  SetApplicationPath(args);
  CalendarDocument document = Load(args.positional[0]);
  if (!document) return 1;
  int result = Save(args.options.at("-o"), document);
  FreeCalendar(document);
  return result;
}

int SettingsCommand(const Arguments& args) {
  if (!args.positional.empty()) return Usage("settings takes no file but --ini FILE");
  if (args.options.count("--ini")) {
    const std::string& path = args.options.at("--ini");
    if (std::FILE* f = std::fopen(path.c_str(), "rt")) {
      std::fclose(f);
    } else {
      std::fprintf(stderr, "quernal-cli: %s: %s\n", path.c_str(), std::strerror(errno));
      return 1;
    }
    LoadSettingsFile(path.c_str());
  }
  WriteSettings(stdout, {}, std::time(nullptr));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return Usage(nullptr);
  std::string command = argv[1];
  struct Command {
    const char* name;
    std::vector<std::string> options;
    int (*run)(const Arguments&);
  };
  const Command commands[] = {
      {"new", {"--year", "--month", "--config", "-o"}, New},
      {"info", {"--app-dir"}, Info},
      {"summary", {"--app-dir"}, Summary},
      {"resave", {"-o", "--level", "--app-dir"}, Resave},
      {"settings", {"--ini"}, SettingsCommand},
  };
  for (const Command& c : commands) {
    if (command != c.name) continue;
    Arguments args;
    std::string problem;
    if (!Parse(argc, argv, c.options, &args, &problem)) return Usage(problem.c_str());
    return c.run(args);
  }
  if (command == "--help" || command == "-h" || command == "help") {
    std::fputs(kUsage, stdout);
    return 0;
  }
  return Usage(("unknown command " + command).c_str());
}
