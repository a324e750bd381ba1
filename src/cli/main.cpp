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
#include "cli/cli_common.h"
#include "cli/record_json.h"
#include "cli/render_command.h"
#include "config/settings.h"
#include "config/settings_file.h"

namespace {

int New(const Arguments& args) {
  if (!args.positional.empty() || !args.Has("-o")) return Usage("new needs -o FILE.CLN and no other file");
  int status = 0;
  CalendarDocument document = NewCalendar(args, &status);
  if (!document) return status;
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
  if (args.positional.size() != 1 || !args.Has("-o")) return Usage("resave needs IN.CLN and -o OUT.CLN");
  int level = static_cast<int>(Settings.ImageCompression);
  if (args.Has("--level") && !ParseInt(args.options.at("--level"), 1, 9, &level))
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
  WriteSettings(stdout, {}, std::time(nullptr));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return Usage(nullptr);
  std::string command = argv[1];
  struct Command {
    const char* name;
    std::vector<std::string> options, flags;
    int (*run)(const Arguments&);
  };
  const Command commands[] = {
      {"new", {"--year", "--month", "--config", "-o"}, {}, New},
      {"info", {"--app-dir"}, {}, Info},
      {"summary", {"--app-dir"}, {}, Summary},
      {"resave", {"-o", "--level", "--app-dir"}, {}, Resave},
      {"settings", {"--ini"}, {}, SettingsCommand},
      {"render",
       {"--year", "--config", "--page", "--halves", "--width", "--height", "--paper", "--dpi", "--app-dir", "--format",
        "-o"},
       {"--new", "--all", "--booklet", "--screen"},
       RenderCommand},
  };
  for (const Command& c : commands) {
    if (command != c.name) continue;
    Arguments args;
    std::string problem;
    if (!ParseArguments(argc, argv, c.options, c.flags, &args, &problem)) return Usage(problem.c_str());
    return c.run(args);
  }
  if (command == "--help" || command == "-h" || command == "help") {
    PrintUsage(true);
    return 0;
  }
  return Usage(("unknown command " + command).c_str());
}
