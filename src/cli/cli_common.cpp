#include "cli/cli_common.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "calendar/calendar_dates.h"
#include "calendar/calendar_file.h"
#include "config/settings.h"
#include "config/settings_file.h"

namespace {

const char kUsage[] =
    "usage:\n"
    "  quernal-cli new [--year Y] [--month M] [--config DIR] -o FILE.CLN\n"
    "  quernal-cli info FILE.CLN [--app-dir DIR]\n"
    "  quernal-cli summary FILE.CLN [--app-dir DIR]\n"
    "  quernal-cli resave IN.CLN -o OUT.CLN [--level 1-9] [--app-dir DIR]\n"
    "  quernal-cli settings [--ini FILE]\n"
    "  quernal-cli render (FILE.CLN | --new [--year Y] [--config DIR]) [--page N | --all | --booklet]\n"
    "              [--halves both|upper|lower] [--screen]\n"
    "              [--width W --height H | --paper a4|letter] [--dpi D] [--app-dir DIR]\n"
    "              --format png|pdf|svg|ops -o OUT\n";

// Loading without anybody to ask: a damaged picture is dropped, as if the
// question had been answered Yes, and said on stderr. Running out of memory
// never asks; the load fails instead.
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

bool Listed(const std::vector<std::string>& list, const std::string& item) {
  for (const std::string& entry : list)
    if (entry == item) return true;
  return false;
}

}  // namespace

void PrintUsage(bool toStdout) { std::fputs(kUsage, toStdout ? stdout : stderr); }

int Usage(const char* problem) {
  if (problem) std::fprintf(stderr, "quernal-cli: %s\n", problem);
  PrintUsage(false);
  return 2;
}

bool ParseArguments(int argc, char** argv, const std::vector<std::string>& withValue,
                    const std::vector<std::string>& flags, Arguments* out, std::string* problem) {
  for (int i = 2; i < argc; ++i) {
    std::string arg = argv[i];
    if (arg.size() < 2 || arg[0] != '-') {
      out->positional.push_back(arg);
    } else if (Listed(flags, arg)) {
      out->options[arg] = "";
    } else if (!Listed(withValue, arg)) {
      *problem = "unknown option " + arg;
      return false;
    } else if (i + 1 >= argc) {
      *problem = arg + " needs a value";
      return false;
    } else {
      out->options[arg] = argv[++i];
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
  std::snprintf(Settings.ApplicationPath, sizeof Settings.ApplicationPath, "%s",
                args.Has("--app-dir") ? args.options.at("--app-dir").c_str() : ".");
}

CalendarDocument Load(const std::string& path) {
  CliProgress progress(path);
  LoadFailure failure;
  CalendarDocument document = LoadCalendar(&progress, path.c_str(), &failure);
  if (!document)
    std::fprintf(stderr, "quernal-cli: %s: %s\n", path.c_str(),
                 failure == LoadFailure::kOutOfMemory ? kMemoryFailedMessage : kLoadFailedMessage);
  return document;
}

int Save(const std::string& path, CalendarDocument document) {
  SilentProgress progress;
  if (SaveCalendar(&progress, path.c_str(), document)) return 0;
  std::fprintf(stderr, "quernal-cli: %s: %s\n", path.c_str(), kSaveFailedMessage);
  return 1;
}

CalendarDocument NewCalendar(const Arguments& args, int* status) {
  CalendarDate today = Today();
  int year = today.year, month = today.month;
  if (args.Has("--year") && !ParseInt(args.options.at("--year"), 1583, 2583, &year)) {
    *status = Usage("--year takes a year from 1583 to 2583");
    return 0;
  }
  if (args.Has("--month") && !ParseInt(args.options.at("--month"), 1, 12, &month)) {
    *status = Usage("--month takes a month from 1 to 12");
    return 0;
  }
  if (args.Has("--config")) {
    SetConfigFolder(args.options.at("--config").c_str());
    LoadSettings();
  }
  // As at start-up, the program's folder is not taken from the settings file.
  SetApplicationPath(args);
  CalendarDocument document = CreateCalendar(year, month - 1);
  if (!document) {
    std::fprintf(stderr, "quernal-cli: There has been an error initializing the year.\n");
    *status = 1;
  }
  return document;
}
