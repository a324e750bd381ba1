// quernal-cli info: every field of a calendar as JSON.
#include "cli/commands.h"

#include "calendar/calendar_model.h"
#include <string>

#include "cli/cli_common.h"
#include "cli/print_resolution.h"
#include "cli/record_json.h"

int InfoCommand(const Arguments& args) {
  if (args.positional.size() != 1) return Usage("info needs one FILE.CLN");
  const std::string paper = args.Has("--paper") ? args.options.at("--paper") : "a4";
  double width, height;
  if (!PaperInches(paper, &width, &height)) return Usage("--paper takes a4 or letter");
  SetApplicationPath(args);
  CalendarDocument document = Load(args.positional[0]);
  if (!document) return 1;
  WriteCalendarJson(stdout, document, paper);
  FreeCalendar(document);
  return 0;
}
