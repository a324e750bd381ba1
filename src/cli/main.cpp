// quernal-cli: the calendar files and settings of Quernal from the command line.
#include <cerrno>
#include <cstdio>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <new>
#include <string>
#include <vector>

#include <glib.h>

#include "base/dib.h"
#include "calendar/calendar_dates.h"
#include "calendar/calendar_file.h"
#include "calendar/calendar_model.h"
#include "calendar/event_list.h"
#include "cli/calendar_lock.h"
#include "cli/cli_common.h"
#include "cli/commands.h"
#include "cli/locale_names.h"
#include "cli/print_resolution.h"
#include "cli/record_json.h"
#include "config/settings.h"
#include "config/settings_file.h"

int InfoCommand(const Arguments& args) {
  if (args.positional.size() != 1) return Usage("info needs one FILE.CLN");
  SetApplicationPath(args);
  CalendarDocument document = Load(args.positional[0]);
  if (!document) return 1;
  WriteCalendarJson(stdout, document);
  FreeCalendar(document);
  return 0;
}

// A few lines for people: the year, the page it opens on, pictures and events.
// ", prints at N ppi" for the page's picture, with a warning below the
// resolution that prints sharp.
std::string Sharpness(const std::vector<PrintedPicture>& printed, int page) {
  for (const PrintedPicture& p : printed)
    if (p.page == page)
      return ", prints at " + std::to_string(p.ppi) + " ppi" + (p.ppi < kBlurryBelowPpi ? " (may print blurry)" : "");
  return "";
}

int SummaryCommand(const Arguments& args) {
  if (args.positional.size() != 1) return Usage("summary needs one FILE.CLN");
  double paperW, paperH;
  const std::string paper = args.Has("--paper") ? args.options.at("--paper") : "a4";
  if (!PaperInches(paper, &paperW, &paperH)) return Usage("--paper takes a4 or letter");
  SetApplicationPath(args);
  CalendarDocument document = Load(args.positional[0]);
  if (!document) return 1;
  CalendarHeader header;
  GetHeader(document, &header);
  int year = CalendarYear(&header);
  const std::vector<PrintedPicture> printed =
      PrintedPictures(document, paperW, paperH, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 13});
  std::printf("%s: a Quernal calendar for %d, opening on the page \"%s\"\n", args.positional[0].c_str(), year,
              PageName(header.CurrentPage));
  std::printf("  cover: %s%s\n", header.CoverPicture ? "with a picture" : "no picture", Sharpness(printed, 13).c_str());
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
    picture += Sharpness(printed, month);
    std::printf("  %-10s %s, events \"%s\": %s\n", MonthName(month), picture.c_str(), page.DaysName,
                page.Events ? (std::to_string(events) + " this month").c_str() : "list not found");
  }
  FreeCalendar(document);
  return 0;
}

int ResaveCommand(const Arguments& args) {
  if (args.positional.size() != 1 || !args.Has("-o")) return Usage("resave needs IN.CLN and -o OUT.CLN");
  int level = static_cast<int>(Settings.ImageCompression);
  if (args.Has("--level") && !ParseInt(args.options.at("--level"), 1, 9, &level))
    return Usage("--level takes a compression level from 1 to 9");
  Settings.ImageCompression = static_cast<uint32_t>(level);
  SetApplicationPath(args);
  // Resaving a calendar in place is a change like any other.
  const CalendarLock lock(args.options.at("-o"));
  if (!lock.ok()) return 1;
  CalendarDocument document = Load(args.positional[0]);
  if (!document) return 1;
  int result = Save(args.options.at("-o"), document);
  FreeCalendar(document);
  return result;
}

int SettingsCommand(const Arguments& args) {
  if (!args.positional.empty()) return Usage("settings takes no file but --ini FILE");
  if (args.Has("--ini")) {
    const std::string& path = args.options.at("--ini");
    if (std::FILE* f = std::fopen(path.c_str(), "rt")) {
      std::fclose(f);
    } else {
      std::fprintf(stderr, "quernal-cli: %s: %s\n", path.c_str(), std::strerror(errno));
      return 1;
    }
    LoadSettingsFile(path.c_str());
  }
  if (int status = ApplyLocaleOption(args); status >= 0) return status;
  WriteSettings(stdout, {}, std::time(nullptr));
  return 0;
}

namespace {

// GLib (under Pango) ends the process when an allocation or a thread
// (whose stack is memory too) fails; the command ends with the program's
// own message instead.
GLogWriterOutput OnGLibMessage(GLogLevelFlags level, const GLogField* fields, gsize count, gpointer data) {
  for (gsize i = 0; i < count; ++i)
    if (std::strcmp(fields[i].key, "MESSAGE") == 0 && fields[i].length < 0 && (level & G_LOG_LEVEL_ERROR) &&
        (std::strstr(static_cast<const char*>(fields[i].value), "failed to allocate") ||
         std::strstr(static_cast<const char*>(fields[i].value), "Error creating thread"))) {
      std::fprintf(stderr, "quernal-cli: %s\n", kMemoryFailedMessage);
      std::_Exit(1);
    }
  return g_log_writer_default(level, fields, count, data);
}

int Run(const Command& command, const Arguments& args) {
  try {
    return command.run(args);
  } catch (const std::bad_alloc&) {
    std::fprintf(stderr, "quernal-cli: %s\n", kMemoryFailedMessage);
    return 1;
  }
}

}  // namespace

int main(int argc, char** argv) {
  // A file-size limit fails the write that passes it, which the writers
  // report and clean up after, instead of ending the process mid-file.
  std::signal(SIGXFSZ, SIG_IGN);
  g_log_set_writer_func(OnGLibMessage, nullptr, nullptr);
  if (argc < 2) return Usage(nullptr);
  const std::string name = argv[1];
  if (name == "--version") {
    std::printf("quernal-cli %s\n", QUERNAL_VERSION);
    return 0;
  }
  if (name == "help" || name == "--help" || name == "-h") {
    if (argc == 2) {
      PrintUsage(stdout);
      return 0;
    }
    if (argc == 3 && std::strcmp(argv[2], "--man") == 0) {
      PrintManPage(stdout);
      return 0;
    }
    const Command* command = FindCommand(argv[2]);
    if (!command || argc > 3) return Usage(("no help for " + std::string(argv[2])).c_str());
    PrintCommandHelp(stdout, *command);
    return 0;
  }
  const Command* command = FindCommand(name);
  if (!command) return Usage(("unknown command " + name).c_str());
  for (int i = 2; i < argc; ++i) {
    if (std::strcmp(argv[i], "--help") == 0) {
      PrintCommandHelp(stdout, *command);
      return 0;
    }
  }
  Arguments args;
  std::string problem;
  if (!ParseArguments(argc, argv, *command, &args, &problem)) return Usage(problem.c_str());
  return Run(*command, args);
}
