// quernal-cli info: every field of a calendar as JSON.
#include "cli/commands.h"

#include "calendar/calendar_model.h"
#include "cli/cli_common.h"
#include "cli/record_json.h"

int InfoCommand(const Arguments& args) {
  if (args.positional.size() != 1) return Usage("info needs one FILE.CLN");
  SetApplicationPath(args);
  CalendarDocument document = Load(args.positional[0]);
  if (!document) return 1;
  WriteCalendarJson(stdout, document);
  FreeCalendar(document);
  return 0;
}
